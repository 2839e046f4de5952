// SPDX-License-Identifier: MIT
#pragma once

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstddef>

namespace vantle::test {

/// No thread is to be had while this lasts: each would need a stack larger than all memory.
class NoThreads
{
public:
    NoThreads()
    {
        pthread_attr_t attributes;
        pthread_getattr_default_np(&attributes);
        pthread_attr_getstacksize(&attributes, &m_usual);
        setStackSize(std::size_t{1} << 50);
        pthread_attr_destroy(&attributes);
    }
    ~NoThreads() { setStackSize(m_usual); }
    NoThreads(const NoThreads &) = delete;
    NoThreads &operator=(const NoThreads &) = delete;

private:
    static void setStackSize(std::size_t size)
    {
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes, size);
        pthread_setattr_default_np(&attributes);
        pthread_attr_destroy(&attributes);
    }

    std::size_t m_usual = 0;
};

/// No descriptor is to be had while this lasts, unless one is closed.
class NoDescriptors
{
public:
    NoDescriptors()
    {
        getrlimit(RLIMIT_NOFILE, &m_usual);
        const int next = dup(0);
        close(next);
        const rlimit few = {static_cast<rlim_t>(next), m_usual.rlim_max};
        setrlimit(RLIMIT_NOFILE, &few);
    }
    ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &m_usual); }
    NoDescriptors(const NoDescriptors &) = delete;
    NoDescriptors &operator=(const NoDescriptors &) = delete;

private:
    rlimit m_usual = {};
};

} // namespace vantle::test
