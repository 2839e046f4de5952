// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtWebSockets/QWebSocket>
#include <QtWebSockets/QWebSocketServer>

#include <functional>

namespace vantle::test {

/// A server in this process that does what no real OBS can be made to do. Keeps profiles, parameters, sizes
/// and the service as OBS would, unless the test's own function answers first.
class FakeObs
{
public:
    using Answer = std::function<bool(const QString &type, const QJsonObject &data, QJsonObject &answer)>;

    FakeObs()
    {
        m_server.listen(QHostAddress::LocalHost);
        QObject::connect(&m_server, &QWebSocketServer::newConnection, &m_server, [this] {
            m_socket.reset(m_server.nextPendingConnection());
            QObject::connect(m_socket.get(), &QWebSocket::textMessageReceived, &m_server,
                             [this](const QString &text) { take(text); });
            m_socket->sendTextMessage(greeting);
        });
    }

    [[nodiscard]] quint16 port() const { return m_server.serverPort(); }

    QString greeting = QStringLiteral(R"({"op":0,"d":{"rpcVersion":1}})");
    Answer answer = [](const QString &, const QJsonObject &, QJsonObject &) { return false; };
    QStringList requests; ///< in the order in which they came

    QString profile = QStringLiteral("Mine");
    QStringList profiles{QStringLiteral("Mine")};
    QHash<QString, QString> parameters; ///< of all profiles: "Mine/Audio/SampleRate"
    QJsonObject video{{QStringLiteral("baseWidth"), 1920}, {QStringLiteral("baseHeight"), 1080}};
    QJsonObject service;

    void sendEvent(const QString &type, const QJsonObject &data)
    {
        send(5, {{QStringLiteral("eventType"), type}, {QStringLiteral("eventData"), data}});
    }

    /// An answer to be refused with.
    static QJsonObject refusal(int code, const QString &comment = {})
    {
        return {{QStringLiteral("result"), false},
                {QStringLiteral("code"), code},
                {QStringLiteral("comment"), comment}};
    }

private:
    void send(int operation, const QJsonObject &data)
    {
        const QJsonObject whole{{QStringLiteral("op"), operation}, {QStringLiteral("d"), data}};
        m_socket->sendTextMessage(QString::fromUtf8(QJsonDocument(whole).toJson()));
    }

    void take(const QString &text)
    {
        const QJsonObject message = QJsonDocument::fromJson(text.toUtf8()).object();
        const QJsonObject data = message[QLatin1StringView("d")].toObject();
        if (message[QLatin1StringView("op")].toInt() == 1) {
            send(2, {});
            return;
        }
        const QString type = data[QLatin1StringView("requestType")].toString();
        const QJsonObject request = data[QLatin1StringView("requestData")].toObject();
        requests.append(type);
        QJsonObject found;
        if (!answer(type, request, found))
            found = usual(type, request);
        if (found.contains(QLatin1StringView("silent")))
            return;
        const bool isRefusal = found.contains(QLatin1StringView("code"));
        const QJsonObject good{{QStringLiteral("result"), true}, {QStringLiteral("code"), 100}};
        send(7, {{QStringLiteral("requestType"), type},
                 {QStringLiteral("requestId"), data[QLatin1StringView("requestId")]},
                 {QStringLiteral("requestStatus"), isRefusal ? found : good},
                 {QStringLiteral("responseData"), found}});
    }

    QJsonObject usual(const QString &type, const QJsonObject &data)
    {
        using namespace Qt::StringLiterals;
        const QString name = data["profileName"_L1].toString();
        const QString key = profile + u'/' + data["parameterCategory"_L1].toString() + u'/' +
                            data["parameterName"_L1].toString();
        if (type == "GetVersion"_L1)
            return {{u"obsVersion"_s, u"29.0.2"_s}};
        if (type == "GetProfileList"_L1)
            return {{u"currentProfileName"_s, profile},
                    {u"profiles"_s, QJsonArray::fromStringList(profiles)}};
        if (type == "CreateProfile"_L1) {
            profiles.append(name);
            profile = name;
        } else if (type == "SetCurrentProfile"_L1) {
            profile = name;
        } else if (type == "RemoveProfile"_L1) {
            profiles.removeAll(name);
        } else if (type == "GetProfileParameter"_L1) {
            return {
                {u"parameterValue"_s, parameters.contains(key) ? QJsonValue(parameters[key]) : QJsonValue()},
                {u"defaultParameterValue"_s, key.endsWith("SampleRate"_L1)     ? u"48000"_s
                                             : key.endsWith("ChannelSetup"_L1) ? u"Stereo"_s
                                                                               : QString()}};
        } else if (type == "SetProfileParameter"_L1) {
            parameters[key] = data["parameterValue"_L1].toString();
        } else if (type == "GetVideoSettings"_L1) {
            return video;
        } else if (type == "SetVideoSettings"_L1) {
            video = data;
            video.insert(u"ofANewerVersion"_s, 1);
        } else if (type == "GetStreamServiceSettings"_L1) {
            return service;
        } else if (type == "SetStreamServiceSettings"_L1) {
            service = data;
        }
        return {};
    }

    QWebSocketServer m_server{QStringLiteral("fake"), QWebSocketServer::NonSecureMode};
    std::unique_ptr<QWebSocket> m_socket;
};

} // namespace vantle::test
