// SPDX-License-Identifier: MIT
#include "VantlePresets/core/Log.h"

#include <algorithm>
#include <cstdio>
#include <mutex>

namespace vantle {
namespace {

struct SinkSlot
{
    std::mutex mutex;
    LogSink sink;
};

// Leaked on purpose: threads may still log while static objects are destroyed.
SinkSlot &slot()
{
    static auto *const instance = new SinkSlot;
    return *instance;
}

bool isControl(QChar c)
{
    return c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

void writeToStandardOutput(const QString &line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
    std::fflush(stdout);
}

} // namespace

QString escapedControls(const QString &text)
{
    if (std::none_of(text.begin(), text.end(), isControl))
        return text;
    QString escaped;
    for (const QChar c : text) {
        if (isControl(c))
            escaped += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            escaped += c;
    }
    return escaped;
}

void logLine(const QString &line)
{
    const QString clean = escapedControls(line);
    const std::lock_guard lock(slot().mutex);
    if (slot().sink)
        slot().sink(clean);
    else
        writeToStandardOutput(clean);
}

void setLogSink(LogSink sink)
{
    const std::lock_guard lock(slot().mutex);
    slot().sink = std::move(sink);
}

} // namespace vantle
