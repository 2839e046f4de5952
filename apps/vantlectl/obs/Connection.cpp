// SPDX-License-Identifier: MIT
#include "apps/vantlectl/obs/Connection.h"

#include "apps/vantlectl/obs/Handshake.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/model/Secrets.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QJsonDocument>
#include <QtCore/QTimer>
#include <QtCore/QUrl>
#include <QtNetwork/QNetworkProxy>
#include <QtWebSockets/QWebSocketHandshakeOptions>

namespace vantle::ctl::obs {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto kReadyInterval = 200ms;
constexpr auto kCloseLimit = 1s;
constexpr quint64 kLargestMessage = 1 << 24; // the list of requests, the longest answer, takes some 10 KiB
constexpr qint64 kLargestGreeting = 1 << 20; // bytes of HTTP, of which QWebSocket refuses fewer

constexpr int kProtocolVersion = 1;
constexpr int kOutputEvents = 1 << 6;
constexpr int kNotReady = 207;

enum Operation { kHello = 0, kIdentify = 1, kIdentified = 2, kEvent = 5, kRequest = 6, kAnswer = 7 };

} // namespace

QString Endpoint::text() const
{
    return (host.contains(u':') ? u'[' + host + u']' : host) + u':' + QString::number(port);
}

// The object is whole before it connects, so that its destructor ends what was begun.
Connection::Connection(State state, Endpoint endpoint, QString password, const Limits &limits)
    : m_endpoint(std::move(endpoint)), m_password(std::move(password)), m_limits(limits), m_state(state)
{
}

Connection::Connection(const Endpoint &endpoint, const QString &password, const Limits &limits)
    : Connection(State::connecting, endpoint, password, limits)
{
    if (!m_password.isEmpty())
        m_secrets.append(m_password);
    m_socket.setProxy(QNetworkProxy::NoProxy);
    m_socket.setMaxAllowedIncomingMessageSize(kLargestMessage);
    m_socket.setMaxAllowedIncomingFrameSize(kLargestMessage);
    QObject::connect(&m_socket, &QWebSocket::textMessageReceived, &m_socket,
                     [this](const QString &message) { take(message); });
    QObject::connect(&m_socket, &QWebSocket::connected, &m_socket, [this] {
        m_state = State::open;
        m_socket.setReadBufferSize(2 * static_cast<qint64>(kLargestMessage)); // a whole frame has to fit in
    });
    QObject::connect(&m_socket, &QWebSocket::disconnected, &m_socket, [this] {
        if (m_state != State::connecting) // the error that tells why follows
            end(closeReason(static_cast<int>(m_socket.closeCode()), shown(m_socket.closeReason())));
    });
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    const auto failed = &QWebSocket::errorOccurred;
#else
    const auto failed = QOverload<QAbstractSocket::SocketError>::of(&QWebSocket::error);
#endif
    QObject::connect(&m_socket, failed, &m_socket, [this] {
        // What has been reached and is no such server is told of in words of the library's own.
        if (m_state == State::connecting && m_socket.localPort() != 0 &&
            m_socket.error() != QAbstractSocket::RemoteHostClosedError)
            end(u"something else than OBS answers there; the menu Tools > WebSocket Server Settings of OBS "
                "shows its port"_s);
        else
            end(shown(m_socket.errorString()) +
                "; is OBS running, with the server of its menu Tools > WebSocket Server "
                "Settings switched on?"_L1);
    });

    QWebSocketHandshakeOptions options;
    options.setSubprotocols({u"obswebsocket.json"_s});
    m_socket.open(QUrl("ws://"_L1 + m_endpoint.text()), options);
    m_socket.setReadBufferSize(kLargestGreeting); // the socket is there from now on
    const auto identified = [this] { return m_state == State::identified; };
    if (!waitFor(identified, limits.connect))
        throw Error(m_endpoint.text() + ": no OBS answers there in time"_L1);
}

Connection::~Connection()
{
    m_handler = nullptr;
    if (m_state == State::identified) {
        m_socket.close();
        try {
            waitFor([this] { return m_state == State::ended; }, kCloseLimit);
        } catch (const std::exception &) { // it has ended
        }
    }
    QObject::disconnect(&m_socket, nullptr, nullptr, nullptr);
    m_socket.abort();
}

bool Connection::waitFor(const std::function<bool()> &condition, std::chrono::milliseconds limit)
{
    QTimer timer;
    timer.setSingleShot(true);
    timer.start(limit);
    while (!condition()) {
        if (m_state == State::ended)
            throw Error(m_endpoint.text() + ": "_L1 + m_why);
        if (!timer.isActive())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

QJsonObject Connection::request(const QString &type, const QJsonObject &data)
{
    const QDeadlineTimer deadline(m_limits.answer);
    const auto left = [&] { return std::chrono::milliseconds(deadline.remainingTime()); };
    for (;;) {
        try {
            return requestOnce(type, data, left());
        } catch (const RequestError &error) {
            if (error.code() != kNotReady || left() < kReadyInterval)
                throw;
        }
        waitFor([] { return false; }, kReadyInterval);
    }
}

QJsonObject Connection::requestOnce(const QString &type, const QJsonObject &data,
                                    std::chrono::milliseconds limit)
{
    m_answer = {};
    send(kRequest, {{u"requestType"_s, type},
                    {u"requestId"_s, QString::number(++m_lastRequest)},
                    {u"requestData"_s, data}});
    if (!waitFor([this] { return !m_answer.isEmpty(); }, limit))
        throw NoAnswer("OBS does not answer "_L1 + type);
    const QJsonObject status = m_answer["requestStatus"_L1].toObject();
    if (status["result"_L1].toBool())
        return m_answer["responseData"_L1].toObject();
    const int code = status["code"_L1].toInt();
    const QString comment = status["comment"_L1].toString();
    throw RequestError(u"OBS refused %1 (%2%3)"_s.arg(type).arg(code).arg(
                           comment.isEmpty() ? QString() : QString(": "_L1 + shown(comment))),
                       code);
}

void Connection::take(const QString &message)
{
    const QJsonObject whole = QJsonDocument::fromJson(message.toUtf8()).object();
    const QJsonObject data = whole["d"_L1].toObject();
    switch (whole["op"_L1].toInt(-1)) {
    case kHello:
        answerHello(data);
        break;
    case kIdentified:
        m_state = State::identified;
        break;
    case kEvent:
        if (m_handler)
            m_handler(data["eventType"_L1].toString(), data["eventData"_L1].toObject());
        break;
    case kAnswer:
        // A late answer to a request that was given up is nobody's.
        if (data["requestId"_L1].toString() == QString::number(m_lastRequest))
            m_answer = data;
        break;
    default:
        end(u"it does not speak obs-websocket's protocol"_s);
        m_socket.abort();
    }
}

void Connection::answerHello(const QJsonObject &hello)
{
    QJsonObject identify{{u"rpcVersion"_s, kProtocolVersion}, {u"eventSubscriptions"_s, kOutputEvents}};
    const QJsonObject asked = hello["authentication"_L1].toObject();
    if (!asked.isEmpty()) {
        if (m_password.isEmpty()) {
            end(u"it asks for a password: give it with --password @FILE, --password @- or in "
                "OBS_WEBSOCKET_PASSWORD"_s);
            m_socket.close();
            return;
        }
        identify.insert(u"authentication"_s, authenticationAnswer(m_password, asked["salt"_L1].toString(),
                                                                  asked["challenge"_L1].toString()));
    }
    send(kIdentify, identify);
}

void Connection::send(int operation, const QJsonObject &data)
{
    const QJsonObject whole{{u"op"_s, operation}, {u"d"_s, data}};
    m_socket.sendTextMessage(QString::fromUtf8(QJsonDocument(whole).toJson(QJsonDocument::Compact)));
}

/// What OBS says can hold what it was told.
QString Connection::shown(QString remoteText) const
{
    for (const QString &secret : m_secrets)
        remoteText.replace(secret, masked(secret));
    return escapedControls(remoteText);
}

/// The first reason is the one that counts: closing follows from it.
void Connection::end(const QString &why)
{
    if (std::exchange(m_state, State::ended) != State::ended)
        m_why = why;
}

} // namespace vantle::ctl::obs
