// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <utility>

#include <unistd.h>

namespace vantle {

/// Owns a file descriptor.
class Descriptor
{
public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    Descriptor(Descriptor &&other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    Descriptor &operator=(Descriptor other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~Descriptor()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }

    /// False, with errno set, when the file system tells only now that there is no space (NFS, quotas).
    [[nodiscard]] bool close() { return ::close(std::exchange(m_descriptor, -1)) == 0 || errno == EINTR; }
    [[nodiscard]] int get() const { return m_descriptor; }
    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }

private:
    int m_descriptor = -1;
};

} // namespace vantle
