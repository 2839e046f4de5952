// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/document/FileAccess.h"
#include "base/Descriptor.h"

#include <cerrno>

#include <sys/stat.h>

// How the functions on files call the system. Private to this folder.
namespace vantle {

[[noreturn]] inline void throwLastError()
{
    throw std::system_error(errno, std::generic_category());
}

/// Repeats a system call that a signal interrupted; throws when it fails for another reason.
template <class Call>
auto checked(Call call)
{
    for (;;) {
        const auto result = call();
        if (result >= 0)
            return result;
        if (errno != EINTR)
            throwLastError();
    }
}

/// The system would take the path to end there.
inline void requireNoNul(const std::filesystem::path &path)
{
    if (path.native().find('\0') != std::string::npos)
        throw std::system_error(make_error_code(FileFault::badName));
}

inline FileStamp stampFrom(const struct stat &status)
{
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim, status.st_ctim};
}

} // namespace vantle
