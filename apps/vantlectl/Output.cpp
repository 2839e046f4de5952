// SPDX-License-Identifier: MIT
#include "apps/vantlectl/Output.h"

#include <cerrno>
#include <cstdio>

#include <unistd.h>

namespace vantle::ctl {

void Output::line(const QString &text)
{
    bytes(text.toUtf8());
    bytes("\n");
}

void Output::bytes(QByteArrayView content)
{
    constexpr qsizetype kEnough = 1 << 14;
    m_buffer += content;
    if (m_buffer.size() >= kEnough)
        flush();
}

void Output::flush()
{
    QByteArrayView rest = m_buffer;
    while (!rest.isEmpty()) {
        const ssize_t written = ::write(STDOUT_FILENO, rest.data(), static_cast<std::size_t>(rest.size()));
        if (written >= 0)
            rest = rest.sliced(written);
        else if (errno != EINTR)
            throw OutputError(errno, std::generic_category());
    }
    m_buffer.clear();
}

void complain(const QString &text)
{
    std::fprintf(stderr, "vantlectl: %s\n", text.toUtf8().constData());
}

} // namespace vantle::ctl
