// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/core/Log.h"

#include <QtCore/QStringList>

namespace vantle::test {

/// Collects the log lines of its lifetime in place of standard output.
class LogCapture
{
public:
    LogCapture()
    {
        setLogSink([this](const QString &line) { m_lines.append(line); });
    }
    ~LogCapture() { setLogSink({}); }
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    [[nodiscard]] const QStringList &lines() const { return m_lines; }

private:
    QStringList m_lines;
};

} // namespace vantle::test
