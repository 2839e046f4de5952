// SPDX-License-Identifier: MIT
#include "apps/vantlectl/Output.h"

#include "VantlePresets/document/FileAccess.h"

#include <cstdio>

#include <unistd.h>

namespace vantle::ctl {
namespace {

bool g_isQuiet = false;

} // namespace

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
    try {
        writeFully(STDOUT_FILENO, m_buffer);
    } catch (const std::system_error &error) {
        throw OutputError(error.code());
    }
    m_buffer.clear();
}

void setQuiet(bool isQuiet)
{
    g_isQuiet = isQuiet;
}

bool isQuiet()
{
    return g_isQuiet;
}

void complain(const QString &text)
{
    std::fprintf(stderr, "vantlectl: %s\n", text.toUtf8().constData());
}

void remark(const QString &text)
{
    if (!g_isQuiet)
        complain(text);
}

void tellLogLine(const QString &line)
{
    if (line.startsWith(QLatin1StringView("Preset Saved: ")))
        remark(line);
    else
        complain(line);
}

} // namespace vantle::ctl
