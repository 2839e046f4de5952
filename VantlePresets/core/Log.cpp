// SPDX-License-Identifier: MIT
#include "VantlePresets/core/Log.h"

#include <QtCore/QScopeGuard>

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace vantle {
namespace {

struct SinkSlot
{
    std::mutex mutex; // never held while a sink runs or is destroyed
    std::condition_variable callEnded;
    std::shared_ptr<const LogSink> sink = std::make_shared<const LogSink>();
    std::deque<QString> lines;        // on their way to the sink
    const LogSink *running = nullptr; // is being called
    bool isEmptying = false;          // a thread hands out the lines, one by one
    std::thread::id emptying;         // that thread
};

// Leaked on purpose: threads may still log while static objects are destroyed.
SinkSlot &slot()
{
    static auto *const instance = new SinkSlot;
    return *instance;
}

bool isEscaped(QChar c)
{
    return isControl(c) || (c >= u'\u202A' && c <= u'\u202E') || (c >= u'\u2066' && c <= u'\u2069');
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
    if (std::none_of(text.begin(), text.end(), isEscaped))
        return text;
    QString escaped;
    for (const QChar c : text) {
        if (isEscaped(c))
            escaped += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            escaped += c;
    }
    return escaped;
}

void logLine(const QString &line)
{
    QString clean = escapedControls(line);
    SinkSlot &log = slot();
    std::unique_lock lock(log.mutex);
    log.lines.push_back(std::move(clean));
    if (log.isEmptying)
        return; // by a thread whose call of the sink goes on, this one perhaps
    log.isEmptying = true;
    log.emptying = std::this_thread::get_id();
    const auto end = qScopeGuard([&log, &lock] { // also when a sink throws
        if (!lock.owns_lock())
            lock.lock();
        log.running = nullptr;
        log.isEmptying = false;
        log.emptying = {};
        log.callEnded.notify_all();
    });
    while (!log.lines.empty()) {
        const QString next = std::move(log.lines.front());
        log.lines.pop_front();
        auto used = log.sink;
        log.running = used.get();
        lock.unlock();
        if (*used)
            (*used)(next);
        else
            writeToStandardOutput(next);
        used.reset();
        lock.lock();
        log.running = nullptr;
        log.callEnded.notify_all();
    }
}

void setLogSink(LogSink sink)
{
    auto replaced = std::make_shared<const LogSink>(std::move(sink)); // goes when no lock is held
    SinkSlot &log = slot();
    std::unique_lock lock(log.mutex);
    log.sink.swap(replaced);
    if (log.emptying != std::this_thread::get_id())
        log.callEnded.wait(lock, [&] { return log.running != replaced.get(); });
}

} // namespace vantle
