// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>

#include <unistd.h>

namespace vantle::test {

/// Another effective user and group for a while. Only a process of root's can take them; any other stays who
/// it is.
class OtherUser
{
public:
    explicit OtherUser(uid_t user, gid_t group = ::getegid())
        : m_taken(::setegid(group) == 0 && ::seteuid(user) == 0)
    {
    }
    ~OtherUser()
    {
        if (m_taken && (::seteuid(::getuid()) != 0 || ::setegid(::getgid()) != 0))
            std::abort();
    }
    OtherUser(const OtherUser &) = delete;
    OtherUser &operator=(const OtherUser &) = delete;

private:
    bool m_taken;
};

} // namespace vantle::test
