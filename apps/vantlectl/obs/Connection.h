// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/obs/ObsError.h"

#include <QtCore/QJsonObject>
#include <QtCore/QStringList>
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

/// How long the other side is waited for.
struct Limits
{
    std::chrono::milliseconds connect{4000};
    std::chrono::milliseconds answer{10000};
};

/// One conversation with obs-websocket 5, step by step: each call takes the events of this thread in until it
/// is done, and ends within a time whatever the other side does. Closes the connection when it is destroyed:
/// OBS takes five seconds longer to quit while a client is connected.
class Connection
{
public:
    using EventHandler = std::function<void(const QString &type, const QJsonObject &data)>;

    /// Connects and identifies. Throws Error.
    Connection(const Endpoint &endpoint, const QString &password, const Limits &limits = {});
    ~Connection();
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    /// Texts that are masked in whatever OBS says, beside the password.
    void addSecrets(const QStringList &secrets) { m_secrets += secrets; }

    /// The answer's data. Asks again while OBS is not ready. Throws RequestError for a refusal, NoAnswer when
    /// none comes.
    QJsonObject request(const QString &type, const QJsonObject &data = {});

    /// Whether the condition came true within the limit. It is asked again whenever something has come in.
    /// Throws Error when the connection ends.
    bool waitFor(const std::function<bool()> &condition, std::chrono::milliseconds limit);

    /// Called for each event of the outputs while this object waits.
    void setEventHandler(EventHandler handler) { m_handler = std::move(handler); }

private:
    enum class State { connecting, open, identified, ended };

    Connection(State state, Endpoint endpoint, QString password, const Limits &limits);
    void take(const QString &message);
    void answerHello(const QJsonObject &hello);
    void send(int operation, const QJsonObject &data);
    void end(const QString &why);
    [[nodiscard]] QString shown(QString remoteText) const;
    QJsonObject requestOnce(const QString &type, const QJsonObject &data, std::chrono::milliseconds limit);

    Endpoint m_endpoint;
    QString m_password;
    QStringList m_secrets;
    Limits m_limits;
    QWebSocket m_socket;
    State m_state;
    QString m_why; ///< the connection has ended
    int m_lastRequest = 0;
    QJsonObject m_answer; ///< to the last request; empty until it has come
    EventHandler m_handler;
};

} // namespace vantle::ctl::obs
