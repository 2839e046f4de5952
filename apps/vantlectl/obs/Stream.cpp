// SPDX-License-Identifier: MIT
#include "apps/vantlectl/obs/Stream.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QElapsedTimer>
#include <QtCore/QStringList>

namespace vantle::ctl::obs {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto kStopLimit = 10s;
constexpr auto kInterval = 250ms;
constexpr int kRises = 4; // of the bytes, one for each look: the first is the greeting of a server

constexpr auto kStarted = "STARTED"_L1;
constexpr auto kStopped = "STOPPED"_L1;
constexpr int kNotRunning = 501;

/// What the stream's events told, "STARTING, STOPPED".
class StreamEvents
{
public:
    explicit StreamEvents(Connection &connection) : m_connection(connection)
    {
        m_connection.setEventHandler([this](const QString &type, const QJsonObject &data) {
            constexpr auto kPrefix = "OBS_WEBSOCKET_OUTPUT_"_L1;
            QString state = data["outputState"_L1].toString();
            if (type == "StreamStateChanged"_L1 && state.startsWith(kPrefix))
                m_states.append(state.sliced(kPrefix.size()));
        });
    }
    ~StreamEvents() { m_connection.setEventHandler(nullptr); }
    StreamEvents(const StreamEvents &) = delete;
    StreamEvents &operator=(const StreamEvents &) = delete;

    [[nodiscard]] bool has(QLatin1StringView state) const { return m_states.contains(state); }
    [[nodiscard]] QString text() const { return m_states.isEmpty() ? u"no event"_s : m_states.join(", "_L1); }

private:
    Connection &m_connection;
    QStringList m_states;
};

bool isOver(const StreamStatus &status)
{
    return !status.isActive && !status.isReconnecting;
}

/// Whether the stream is on air within the limit.
bool isConfirmed(Connection &connection, const StreamEvents &events, const bool &isInterrupted,
                 std::chrono::milliseconds limit)
{
    const QDeadlineTimer deadline(limit);
    qint64 bytes = 0;
    int rises = 0;
    while (!deadline.hasExpired() && !isInterrupted && !events.has(kStopped)) {
        connection.waitFor([&] { return isInterrupted || events.has(kStopped); }, kInterval);
        const StreamStatus status = streamStatus(connection);
        if (status.bytes > bytes)
            ++rises;
        bytes = status.bytes;
        if (events.has(kStarted) && status.isActive && !status.isReconnecting && rises >= kRises)
            return true;
    }
    return false;
}

} // namespace

StreamStatus streamStatus(Connection &connection)
{
    const QJsonObject answer = connection.request(u"GetStreamStatus"_s);
    return {answer["outputActive"_L1].toBool(),           answer["outputReconnecting"_L1].toBool(),
            answer["outputBytes"_L1].toInteger(),         answer["outputDuration"_L1].toInteger(),
            answer["outputSkippedFrames"_L1].toInteger(), answer["outputTotalFrames"_L1].toInteger()};
}

void startStream(Connection &connection, const bool &isInterrupted, std::chrono::milliseconds limit)
{
    const StreamEvents events(connection);
    connection.request(u"StartStream"_s);
    if (isConfirmed(connection, events, isInterrupted, limit))
        return;
    const QString seen = events.text();
    const qint64 bytes = streamStatus(connection).bytes;
    stopStream(connection);
    if (isInterrupted)
        throw Error(u"interrupted; the stream was stopped"_s);
    throw Error(
        u"nothing is on air: OBS told %1 and sent %2 bytes; the stream was stopped. OBS gives the reason "
        "on its own screen only"_s.arg(seen)
            .arg(bytes));
}

bool stopStream(Connection &connection)
{
    if (isOver(streamStatus(connection)))
        return false;
    try {
        connection.request(u"StopStream"_s);
    } catch (const RequestError &error) {
        if (error.code() != kNotRunning) // it has just ended by itself
            throw;
    }
    const QDeadlineTimer deadline(kStopLimit);
    while (!isOver(streamStatus(connection))) {
        if (deadline.hasExpired())
            throw Error(u"OBS has not stopped the stream within %1 seconds"_s.arg(
                std::chrono::seconds(kStopLimit).count()));
        connection.waitFor([] { return false; }, kInterval);
    }
    return true;
}

qint64 measuredBitRate(Connection &connection)
{
    QElapsedTimer clock;
    const qint64 before = streamStatus(connection).bytes;
    clock.start();
    connection.waitFor([] { return false; }, 1s);
    const qint64 sent = streamStatus(connection).bytes - before;
    return std::max<qint64>(sent, 0) * 8 / std::max<qint64>(clock.elapsed(), 1);
}

} // namespace vantle::ctl::obs
