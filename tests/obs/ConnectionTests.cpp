// SPDX-License-Identifier: MIT
#include "apps/vantlectl/obs/Access.h"
#include "apps/vantlectl/obs/Application.h"
#include "apps/vantlectl/obs/Handshake.h"
#include "apps/vantlectl/obs/Stream.h"
#include "tests/obs/FakeObs.h"
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QtCore/QRegularExpression>
#include <QtCore/QTimer>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace ctl::obs;
using testing::HasSubstr;

/// What the call fails with; "" when it does not.
std::string failureOf(const std::function<void()> &call)
{
    try {
        call();
        return {};
    } catch (const Error &error) {
        return error.what();
    }
}

class ObsConnection : public testing::Test
{
protected:
    Connection connect(const Limits &limits = {4000ms, 300ms})
    {
        return {{u"127.0.0.1"_s, m_obs.port()}, {}, limits};
    }

    Plan plan()
    {
        const auto preset =
            decodePreset(presetText("YouTube")
                             .with("streamingProtocol", R"("RTMPS")")
                             .with("audioSettings", list({audioText(true).with("sampleRate", "48000")}))
                             .text());
        return planFor(*preset, {QVersionNumber(29), QSize(1920, 1080), {48000, u"Stereo"_s}});
    }

    bool applyTo(Connection &connection)
    {
        return apply(connection, lookAt(connection, {}), plan(), u"Show"_s);
    }

    FakeObs m_obs;
};

TEST_F(ObsConnection, WhatIsNoObsIsTold)
{
    for (const char *greeting : {"", "hello", "{}", R"({"op":8,"d":{}})", R"({"op":"0"})", "[0]"}) {
        m_obs.greeting = QString::fromUtf8(greeting);
        EXPECT_THAT(failureOf([&] { connect(); }), HasSubstr("does not speak obs-websocket's protocol"))
            << greeting;
    }
    m_obs.greeting = uR"({"op":5,"d":{}})"_s; // and then nothing
    EXPECT_THAT(failureOf([&] { connect({200ms, 300ms}); }), HasSubstr("no OBS answers there in time"));
}

TEST(ObsHandshake, WhatAnswersOtherwiseIsToldAndNotTakenIn)
{
    const struct
    {
        QByteArray text; ///< sent again and again
        const char *failure;
    } rows[] = {
        {"HTTP/1.1 404 Not Found\r\n\r\n", "something else than OBS answers there"},
        {"HTTP/1.1 101 Yes\r\n" + QByteArray("A: b\r\n").repeated(20000), "something else than OBS answers"},
        {QByteArray(1 << 16, 'x'), "no OBS answers there in time"},
    };
    for (const auto &row : rows) {
        QTcpServer server;
        ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
        qint64 taken = 0;
        QObject::connect(&server, &QTcpServer::newConnection, &server, [&] {
            QTcpSocket *const socket = server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::bytesWritten, socket, [&taken, &row, socket](qint64 bytes) {
                taken += bytes;
                socket->write(row.text);
            });
            socket->write(row.text);
        });
        EXPECT_THAT(failureOf([&] {
                        Connection({u"127.0.0.1"_s, server.serverPort()}, {}, {1000ms, 300ms});
                    }),
                    HasSubstr(row.failure));
        EXPECT_LT(taken, 1 << 25) << "what sockets hold, and no more";
    }
}

TEST_F(ObsConnection, AnswersThatComeLateOrNotAtAll)
{
    int asked = 0;
    m_obs.answer = [&](const QString &type, const QJsonObject &, QJsonObject &answer) {
        if (type == "GetVersion"_L1 && ++asked < 3)
            answer = FakeObs::refusal(207);
        else if (type == "Dead"_L1)
            answer = {{u"silent"_s, true}};
        else if (type == "Talks"_L1)
            answer = FakeObs::refusal(400, u"not with s3cret"_s);
        else if (type == "Large"_L1)
            answer = {{u"text"_s, QString(1 << 20, u'x')}};
        return !answer.isEmpty();
    };
    Connection connection({u"127.0.0.1"_s, m_obs.port()}, {}, {4000ms, 2000ms});
    EXPECT_EQ(connection.request(u"GetVersion"_s)["obsVersion"_L1].toString(), u"29.0.2"_s);
    EXPECT_EQ(asked, 3);
    EXPECT_EQ(connection.request(u"Large"_s)["text"_L1].toString().size(), 1 << 20);
    connection.addSecrets({u"s3cret"_s});
    EXPECT_EQ(failureOf([&] { connection.request(u"Talks"_s); }),
              "OBS refused Talks (400: not with ********)");
    EXPECT_EQ(failureOf([&] { connection.request(u"Dead"_s); }), "OBS does not answer Dead");
    EXPECT_EQ(connection.request(u"GetVersion"_s)["obsVersion"_L1].toString(), u"29.0.2"_s); // goes on
}

TEST_F(ObsConnection, NothingIsSentWhileSomethingRuns)
{
    for (const char *request :
         {"GetStreamStatus", "GetRecordStatus", "GetReplayBufferStatus", "GetVirtualCamStatus"}) {
        m_obs.answer = [&](const QString &type, const QJsonObject &, QJsonObject &answer) {
            if (type == QLatin1StringView(request))
                answer = {{u"outputActive"_s, true}};
            else if (type == "GetReplayBufferStatus"_L1)
                answer = FakeObs::refusal(604);
            return !answer.isEmpty();
        };
        Connection connection = connect();
        EXPECT_THAT(failureOf([&] { refuseWhileActive(connection); }), HasSubstr("nothing was changed"))
            << request;
    }
}

TEST_F(ObsConnection, DoneIsNotBelievedAndTheProfileComesBack)
{
    for (const char *request :
         {"CreateProfile", "SetProfileParameter", "SetVideoSettings", "SetStreamServiceSettings"}) {
        m_obs.answer = [&](const QString &type, const QJsonObject &, QJsonObject &) {
            return type == QLatin1StringView(request); // "done", and nothing is
        };
        Connection connection = connect();
        EXPECT_THAT(
            failureOf([&] { applyTo(connection); }),
            testing::AllOf(HasSubstr("OBS did not take "), HasSubstr("OBS has its profile \"Mine\" back")))
            << request;
        EXPECT_EQ(m_obs.profile, u"Mine"_s);
        EXPECT_EQ(m_obs.profiles, QStringList{u"Mine"_s});
    }
}

TEST_F(ObsConnection, AnotherOutputModeTakesAProfileThatIsSelectedAnew)
{
    Connection connection = connect();
    EXPECT_TRUE(applyTo(connection));
    EXPECT_FALSE(applyTo(connection));
    m_obs.parameters[m_obs.profile + "/Output/Mode"_L1] = u"Advanced"_s;
    m_obs.profiles.append(u"Vantle-Interim"_s); // left by a command that was killed
    m_obs.requests.clear();
    EXPECT_TRUE(applyTo(connection));
    EXPECT_EQ(m_obs.profile, u"Vantle Untitled Preset"_s);
    EXPECT_EQ(m_obs.profiles, (QStringList{u"Mine"_s, m_obs.profile}));
    const QStringList switches =
        m_obs.requests.filter(u"Profile"_s).filter(QRegularExpression(u"Create|Current|Remove"_s));
    EXPECT_EQ(switches.join(u' '), u"RemoveProfile CreateProfile SetCurrentProfile RemoveProfile"_s);
}

TEST_F(ObsConnection, ASwitchThatOnlyAPersonCanEndIsSaid)
{
    m_obs.profiles.append(u"Vantle Untitled Preset"_s);
    m_obs.answer = [](const QString &type, const QJsonObject &, QJsonObject &answer) {
        if (type == "SetCurrentProfile"_L1)
            answer = {{u"silent"_s, true}};
        return !answer.isEmpty();
    };
    Connection connection = connect();
    EXPECT_THAT(failureOf([&] { applyTo(connection); }),
                testing::AllOf(HasSubstr("is asking on its screen"), HasSubstr("answer it, then apply")));
    EXPECT_EQ(m_obs.requests.count(u"SetCurrentProfile"_s), 1);
}

TEST_F(ObsConnection, AStreamWithoutBytesIsStopped)
{
    bool isActive = false;
    m_obs.answer = [&](const QString &type, const QJsonObject &, QJsonObject &answer) {
        if (type == "StartStream"_L1) {
            isActive = true;
            m_obs.sendEvent(u"StreamStateChanged"_s, {{u"outputState"_s, u"OBS_WEBSOCKET_OUTPUT_STARTED"_s}});
        } else if (type == "StopStream"_L1) {
            isActive = false;
        } else if (type == "GetStreamStatus"_L1) {
            answer = {{u"outputActive"_s, isActive}, {u"outputBytes"_s, 100}};
            return true;
        }
        return false;
    };
    Connection connection = connect();
    EXPECT_THAT(failureOf([&] { startStream(connection, false, 1500ms); }),
                HasSubstr("OBS told STARTED and sent 100 bytes; the stream was stopped"));
    EXPECT_FALSE(isActive);
}

TEST_F(ObsConnection, WhatConnectsLateDoesNotStayOnAir)
{
    struct Row
    {
        bool isInterrupted;
        bool connects; ///< a while after the start
        QString silent;
        std::chrono::milliseconds limit;
        const char *failure;
    };
    const Row rows[] = {
        {true, true, {}, 4000ms, "interrupted; the stream was stopped"},
        {true, false, {}, 300ms, "OBS is still connecting and may go on air: stop it there"},
        {true, true, u"StartStream"_s, 4000ms, "OBS does not answer StartStream; the stream was stopped"},
        {false, true, u"GetStreamStatus"_s, 4000ms,
         "OBS does not answer GetStreamStatus; the stream was stopped. OBS gives"},
        {false, true, u"StopStream"_s, 600ms, "OBS does not answer StopStream; the stream may be on air"},
    };
    for (const Row &row : rows) {
        bool isActive = false;
        QString silent = row.silent;
        m_obs.answer = [&](const QString &type, const QJsonObject &, QJsonObject &answer) {
            if (type == "StartStream"_L1 && row.connects)
                QTimer::singleShot(50ms, [&] {
                    isActive = true;
                    m_obs.sendEvent(u"StreamStateChanged"_s,
                                    {{u"outputState"_s, u"OBS_WEBSOCKET_OUTPUT_STARTED"_s}});
                });
            if (type == silent) {
                silent.clear();
                answer = {{u"silent"_s, true}};
            } else if (type == "StopStream"_L1 && !std::exchange(isActive, false)) {
                answer = FakeObs::refusal(501);
            } else if (type == "GetStreamStatus"_L1) {
                answer = {{u"outputActive"_s, isActive}};
            }
            return !answer.isEmpty();
        };
        m_obs.requests.clear();
        Connection connection = connect();
        EXPECT_THAT(failureOf([&] { startStream(connection, row.isInterrupted, row.limit); }),
                    testing::StartsWith(row.failure));
        EXPECT_TRUE(m_obs.requests.contains("StopStream"_L1));
        EXPECT_EQ(isActive, row.silent == "StopStream"_L1) << row.failure;
    }
}

TEST(ObsAccess, ThePasswordIsProvenAsObsExpects)
{
    EXPECT_EQ(authenticationAnswer(u"scratch-secret"_s, u"726b5lBeLrI/7yJsUPkTlpkJI2uCclibieeoTJz6uG8="_s,
                                   u"lo5gIfLKylMZ7hMu0TbYhGclRB5eUloUJU2/HLlhrw8="_s),
              u"eCUXF6IgGl/SxleH++Fl4nu9LiRQrVUnkZl4SAjqmOU="_s);
}

TEST(ObsAccess, SettingsOfOldAndNewVersions)
{
    const auto ini =
        settingsOfIni("\xef\xbb\xbf[General]\nServerPort=1\n[OBSWebSocket]\r\nServerEnabled=true\r\n"
                      "ServerPort=4460\r\nAuthRequired=true\r\nServerPassword=a=b\\\\c\r\n[Z]\nServerPort=2");
    ASSERT_TRUE(ini);
    EXPECT_EQ(ini->port, 4460);
    EXPECT_EQ(ini->password, u"a=b\\c"_s);
    const auto json = settingsOfJson(R"({"auth_required":false,"server_port":70000,"server_password":"x"})");
    ASSERT_TRUE(json);
    EXPECT_EQ(json->port, 4455);
    EXPECT_EQ(json->password, QString()); // nobody asks for it
    EXPECT_FALSE(settingsOfJson("nonsense"));
    EXPECT_FALSE(settingsOfIni("[General]\nFirstRun=true\n"));
}

TEST(ObsAccess, OnlyThisMachineIsLoopback)
{
    for (const QString &host : {u"localhost"_s, u"127.0.0.1"_s, u"127.9.9.9"_s, u"::1"_s})
        EXPECT_TRUE(isLoopback(host)) << host.toStdString();
    for (const QString &host : {u""_s, u"0.0.0.0"_s, u"10.0.0.1"_s, u"localhost.example"_s, u"::2"_s})
        EXPECT_FALSE(isLoopback(host)) << host.toStdString();
}

} // namespace
} // namespace vantle::test
