// SPDX-License-Identifier: MIT

// Preloaded into tests and the processes that they start: a system that refuses fanotify, as containers do.

#include <cerrno>

extern "C" __attribute__((visibility("default"))) int fanotify_init(unsigned, unsigned)
{
    errno = EPERM;
    return -1;
}
