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

/// Waits until the stream is on air. What keeps it from that within the limit, else "".
QString obstacle(Connection &connection, const StreamEvents &events, const bool &isInterrupted,
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
            return {};
    }
    return isInterrupted
               ? u"interrupted"_s
               : u"nothing is on air: OBS told %1 and sent %2 bytes"_s.arg(events.text()).arg(bytes);
}

/// Ends what was started. While OBS connects it says that nothing is active, refuses to stop, and goes on air
/// later: so the outcome is waited for. Throws Error when the stream may be on air, or go there.
void endStart(Connection &connection, const StreamEvents &events, std::chrono::milliseconds limit)
{
    const auto hasStopped = [&] { return events.has(kStopped); };
    try {
        const bool isDecided =
            connection.waitFor([&] { return events.has(kStarted) || hasStopped(); }, limit);
        stopStream(connection);
        if (isDecided || connection.waitFor(hasStopped, kInterval))
            return;
    } catch (const Error &error) {
        throw Error(error.text() + "; the stream may be on air, or go there: stop it in OBS"_L1);
    }
    throw Error(u"OBS is still connecting and may go on air: stop it there"_s);
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
    QString failure;
    bool isTaken = false;
    try {
        connection.request(u"StartStream"_s);
        isTaken = true;
        failure = obstacle(connection, events, isInterrupted, limit);
    } catch (const RequestError &error) {
        if (!isTaken)
            throw;
        failure = error.text();
    } catch (const Error &error) { // what got no answer can have been taken all the same
        failure = error.text();
    }
    if (failure.isEmpty())
        return;
    endStart(connection, events, limit);
    throw Error(failure + "; the stream was stopped"_L1 +
                (isInterrupted ? QLatin1StringView() : ". OBS gives the reason on its own screen only"_L1));
}

bool stopStream(Connection &connection)
{
    bool wasRunning = true;
    try {
        connection.request(u"StopStream"_s);
    } catch (const RequestError &error) {
        if (error.code() != kNotRunning)
            throw;
        wasRunning = false;
    }
    const QDeadlineTimer deadline(kStopLimit);
    while (!isOver(streamStatus(connection))) {
        if (deadline.hasExpired())
            throw Error(u"OBS has not stopped the stream within %1 seconds"_s.arg(
                std::chrono::seconds(kStopLimit).count()));
        connection.waitFor([] { return false; }, kInterval);
    }
    return wasRunning;
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
