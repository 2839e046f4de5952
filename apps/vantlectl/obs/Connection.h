// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/obs/ObsError.h"

#include <QtCore/QJsonObject>
#include <QtWebSockets/QWebSocket>

#include <chrono>
#include <functional>

namespace vantle::ctl::obs {

/// Where obs-websocket listens.
struct Endpoint
{
    QString host;
    quint16 port = 4455; ///< obs-websocket's own default

    /// "127.0.0.1:4455".
    [[nodiscard]] QString text() const;
};

/// One conversation with obs-websocket 5, step by step: each call takes the events of this thread in until it
/// is done, and ends within a time whatever the other side does. Closes the connection when it is destroyed:
/// OBS takes five seconds longer to quit while a client is connected.
class Connection
{
public:
    using EventHandler = std::function<void(const QString &type, const QJsonObject &data)>;

    /// Connects and identifies within four seconds. Throws Error.
    Connection(const Endpoint &endpoint, const QString &password);
    ~Connection();
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    /// The answer's data. Waits ten seconds at most, OBS's "not ready" included. Throws RequestError for a
    /// refusal, Error when no answer comes.
    QJsonObject request(const QString &type, const QJsonObject &data = {});

    /// Whether the condition came true within the limit. It is asked again whenever something has come in.
    /// Throws Error when the connection ends.
    bool waitFor(const std::function<bool()> &condition, std::chrono::milliseconds limit);

    /// Called for each event of the outputs while this object waits.
    void setEventHandler(EventHandler handler) { m_handler = std::move(handler); }

private:
    enum class State { connecting, open, identified, ended };

    Connection(Endpoint endpoint, QString password, State state);
    void take(const QString &message);
    void answerHello(const QJsonObject &hello);
    void send(int operation, const QJsonObject &data);
    void end(const QString &why);
    QJsonObject requestOnce(const QString &type, const QJsonObject &data, std::chrono::milliseconds limit);

    Endpoint m_endpoint;
    QString m_password;
    QWebSocket m_socket;
    State m_state;
    QString m_why; ///< the connection has ended
    int m_lastRequest = 0;
    QJsonObject m_answer; ///< to the last request; empty until it has come
    EventHandler m_handler;
};

} // namespace vantle::ctl::obs
