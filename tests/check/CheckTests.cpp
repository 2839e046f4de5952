// SPDX-License-Identifier: MIT
#include "tests/check/Servers.h"
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"
#include "tests/support/Wait.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtNetwork/QUdpSocket>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;

const QString kSecret = u"s3cret-of-the-test"_s;
constexpr auto kHttpError = "HTTP/1.1 400 Bad Request\r\nContent-Length: 0\r\n\r\n";

/// What `vantlectl check` said and returned, while this process's servers go on.
struct Said
{
    int exitCode;
    QStringList lines;
    QString errors;
    qint64 milliseconds;
};

/// Run by `launcher`, a command that takes another one, when there is one.
Said check(const TemporaryFolder &folder, const QStringList &arguments, const QStringList &launcher = {})
{
    QElapsedTimer clock;
    clock.start();
    QProcess process;
    process.setWorkingDirectory(QString::fromStdString(folder.path()));
    QStringList command = launcher + QStringList{QStringLiteral(VANTLECTL), u"check"_s} + arguments;
    process.setProgram(command.takeFirst());
    process.setArguments(command);
    process.start();
    if (!waitFor([&] { return process.state() == QProcess::NotRunning; }))
        process.kill();
    process.waitForFinished(-1);
    const QString output = QString::fromUtf8(process.readAllStandardOutput());
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            output.split(u'\n', Qt::SkipEmptyParts), QString::fromUtf8(process.readAllStandardError()),
            clock.elapsed()};
}

QString url(const char *scheme, const char *host, quint16 port, const char *path = "/live")
{
    return QStringLiteral("streamingURL=%1://%2:%3%4")
        .arg(QLatin1StringView(scheme), QLatin1StringView(host), QString::number(port),
             QLatin1StringView(path));
}

TEST(Check, SaysOfEachServerWhatIsWrongInTime)
{
    const Certificates certificates;
    const auto tls = [&](const char *name) { return certificates.server(name); };
    const QSslConfiguration good = tls("good");
    const QSslConfiguration other = tls("other");
    const QSslConfiguration expired = tls("expired");
    const QSslConfiguration own = tls("own");
    const Server rtmp(shakeHands);
    const Server rtmps(shakeHands, &good);
    const Server otherHost(shakeHands, &other);
    const Server tooOld(shakeHands, &expired);
    const Server selfSigned(shakeHands, &own);
    const Server silent(staySilent);
    const Server closing(hangUp);
    const Server half(answerWith("\3" + QByteArray(100, 's')));
    const Server http(answerWith(kHttpError));
    const Server noise(answerWith("?!"));
    const Server endless(answerWith("HTTP/1.1 " + QByteArray(10000, 'x')));
    const Server hostile(answerWith("HTTP/1.1 404 \033[2Jgone\r\n"));
    const Server accepting(answerWith("HTTP/1.1 204 No Content\r\n\r\n"));
    const Server refusing(answerWith("HTTP/1.1 403 Forbidden\r\n\r\n"), &good);
    const Server rtsp(answerWith("RTSP/1.0 200 OK\r\nCSeq: 1\r\n\r\n"));
    const FullPort full;
    const SrtListener open({});
    const SrtListener locked("another-passphrase");
    const SrtListener ours(kSecret.toUtf8());
    QUdpSocket mute;
    ASSERT_TRUE(mute.bind(QHostAddress::LocalHost));
    const QString authority = QString::fromStdString(certificates.authorityFile());
    const QString withKey = "streamKey="_L1 + kSecret;
    const QString auth = u"authenticate=true"_s;

    struct Row
    {
        const char *what;
        const char *kind;
        QStringList arguments;
        QStringList steps; ///< that were good
        const char *last;  ///< the line of the last one, from its name on
    };
    const QStringList look{u"name look-up"_s};
    const QStringList tcp = look + QStringList{u"TCP"_s};
    const QStringList tlsSteps = tcp + QStringList{u"TLS"_s};
    const QString ca = u"--ca-file="_s + authority;
    const QString rtmpsOf = u"streamingProtocol=RTMPS"_s;
    const Row rows[] = {
        {"there",
         "RTMP",
         {url("rtmp", "localhost", rtmp.port())},
         tcp,
         "RTMP handshake ok the server speaks RTMP"},
        {"there, with TLS",
         "RTMP",
         {rtmpsOf, url("rtmps", "localhost", rtmps.port()), ca},
         tlsSteps,
         "RTMP handshake ok the server speaks RTMP"},
        {"by address",
         "RTMP",
         {rtmpsOf, url("rtmps", "127.0.0.1", rtmps.port()), ca},
         tlsSteps,
         "RTMP handshake ok the server speaks RTMP"},
        {"no such name", "RTMP", {u"streamingURL=a..b"_s}, {}, "name look-up failed a..b: is no host name"},
        {"refuses",
         "RTMP",
         {url("rtmp", "127.0.0.1", closedPort())},
         look,
         "TCP failed 127.0.0.1 port PORT: refused: nothing listens there"},
        {"drops what comes",
         "RTMP",
         {url("rtmp", "127.0.0.1", full.port())},
         look,
         "TCP failed 127.0.0.1 port PORT: no answer: "},
        {"signed by nobody",
         "RTMP",
         {rtmpsOf, url("rtmps", "localhost", rtmps.port())},
         tcp,
         "TLS failed the certificate is signed by nobody that this machine trusts"},
        {"signed by itself",
         "RTMP",
         {rtmpsOf, url("rtmps", "localhost", selfSigned.port()), ca},
         tcp,
         "TLS failed the certificate is signed by nobody that this machine trusts"},
        {"another host's",
         "RTMP",
         {rtmpsOf, url("rtmps", "localhost", otherHost.port()), ca},
         tcp,
         "TLS failed the certificate is for other.example, not for localhost"},
        {"out of date",
         "RTMP",
         {rtmpsOf, url("rtmps", "localhost", tooOld.port()), ca},
         tcp,
         "TLS failed the certificate expired on 2021-01-01"},
        {"no TLS",
         "RTMP",
         {rtmpsOf, url("rtmps", "localhost", http.port())},
         tcp,
         "TLS failed the server does not speak TLS on this port"},
        {"TLS, silent",
         "RTMP",
         {rtmpsOf, url("rtmps", "localhost", silent.port())},
         tcp,
         "TLS failed the server does not answer"},
        {"TLS, closing",
         "RTMP",
         {rtmpsOf, url("rtmps", "localhost", closing.port())},
         tcp,
         "TLS failed the server closed the connection: it does not speak TLS on this port"},
        {"silent",
         "RTMP",
         {url("rtmp", "localhost", silent.port())},
         tcp,
         "RTMP handshake failed the server does not answer the handshake"},
        {"stops half way",
         "RTMP",
         {url("rtmp", "localhost", half.port())},
         tcp,
         "RTMP handshake failed the server's handshake ends after 101 bytes"},
        {"closes",
         "RTMP",
         {url("rtmp", "localhost", closing.port())},
         tcp,
         "RTMP handshake failed the server closed the connection"},
        {"HTTP",
         "RTMP",
         {url("rtmp", "localhost", http.port())},
         tcp,
         "RTMP handshake failed the server speaks HTTP, not RTMP"},
        {"TLS where none is meant",
         "RTMP",
         {url("rtmp", "localhost", rtmps.port())},
         tcp,
         "RTMP handshake failed the server closed the connection instead of answering: it may want TLS"},
        {"noise",
         "RTMP",
         {url("rtmp", "localhost", noise.port())},
         tcp,
         "RTMP handshake failed the server speaks something else than RTMP"},
        {"RTSP",
         "RTMP",
         {u"streamingProtocol=RTSP TCP"_s, url("rtsp", "localhost", rtsp.port())},
         tcp,
         "RTSP ok 200 OK"},
        {"upload",
         "HLS",
         {u"--output=http://localhost:%1/a/"_s.arg(accepting.port())},
         tcp,
         "HTTP ok 204 No Content"},
        {"upload refused",
         "HLS",
         {u"--output=https://localhost:%1/a"_s.arg(refusing.port()), ca},
         tlsSteps,
         "HTTP failed 403 Forbidden: "},
        {"upload, noise",
         "HLS",
         {u"--output=http://localhost:%1/"_s.arg(noise.port())},
         tcp,
         "HTTP failed the server speaks something else than HTTP"},
        {"upload, no end",
         "HLS",
         {u"--output=http://localhost:%1/"_s.arg(endless.port())},
         tcp,
         "HTTP failed the server answers with HTTP that can't be read"},
        {"upload, escape sequence",
         "HLS",
         {u"--output=http://localhost:%1/"_s.arg(hostile.port())},
         tcp,
         "HTTP ok 404 \\u001b[2Jgone: the server answers; uploads were not tried"},
        {"folder", "HLS", {}, {}, "folder ok no server to ask: HLS goes into "},
        {"no folder", "HLS", {u"--output=preset.json/x"_s}, {}, "folder failed "},
        {"SRT",
         "SRT",
         {url("srt", "localhost", open.port(), "")},
         look,
         "SRT ok the listener took the connection, not encrypted"},
        {"SRT, encrypted",
         "SRT",
         {auth, withKey, url("srt", "127.0.0.1", ours.port(), "")},
         look,
         "SRT ok the listener took the connection, encrypted"},
        {"SRT, in the address",
         "SRT",
         {url("srt", "127.0.0.1", ours.port(), "?mode=caller&pbkeylen=32&passphrase=") + kSecret},
         look,
         "SRT ok the listener took the connection, encrypted"},
        {"wrong passphrase",
         "SRT",
         {auth, withKey, url("srt", "127.0.0.1", locked.port(), "")},
         look,
         "SRT failed 127.0.0.1 port PORT: the listener has another passphrase"},
        {"no passphrase",
         "SRT",
         {url("srt", "127.0.0.1", locked.port(), "")},
         look,
         "SRT failed 127.0.0.1 port PORT: the listener asks for a passphrase, and the preset has none"},
        {"passphrase too many",
         "SRT",
         {auth, withKey, url("srt", "127.0.0.1", open.port(), "")},
         look,
         "SRT failed 127.0.0.1 port PORT: the listener has no passphrase, and the preset has one"},
        {"passphrase too short",
         "SRT",
         {auth, u"streamKey=short"_s, url("srt", "127.0.0.1", open.port(), "")},
         look,
         "SRT failed a passphrase has 10 to 79 characters"},
        {"SRT, silent",
         "SRT",
         {url("srt", "127.0.0.1", mute.localPort(), "")},
         look,
         "SRT failed 127.0.0.1 port PORT: no answer: "},
        {"listens itself", "SRT", {url("srt", "", closedPort(), "?mode=listener")}, {}, "SRT ok port "},
        {"listens, taken",
         "SRT",
         {url("srt", "127.0.0.1", mute.localPort(), "?mode=listener")},
         {},
         "SRT failed port "},
        {"no host",
         "SRT",
         {u"streamingURL="_s},
         {},
         "preset failed streamingURL: is empty: there is no host to ask"},
        {"no passphrase at hand",
         "SRT",
         {auth, url("srt", "127.0.0.1", 9, "")},
         {},
         "preset failed streamKey: "},
    };
    const TemporaryFolder folder;
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        folder.write("preset.json", presetText(row.kind)
                                        .with("authenticate", "false")
                                        .with("streamingProtocol", R"("RTMP")")
                                        .with("portNumber", "1935")
                                        .text());
        const Said said = check(folder, QStringList{u"./preset.json"_s, u"--limit=1"_s} + row.arguments);
        ASSERT_EQ(said.lines.size(), row.steps.size() + 1)
            << qPrintable(said.errors + said.lines.join(u'\n'));
        for (qsizetype i = 0; i < row.steps.size(); ++i)
            EXPECT_TRUE(said.lines[i].simplified().startsWith(row.steps[i] + " ok "_L1))
                << qPrintable(said.lines[i]);
        static const QRegularExpression time(u" \\d+ ms "_s);
        static const QRegularExpression port(u"port \\d+:"_s);
        const QString last =
            said.lines.last().simplified().replace(time, u" "_s).replace(port, u"port PORT:"_s);
        EXPECT_TRUE(last.startsWith(QLatin1StringView(row.last))) << qPrintable(last);
        EXPECT_EQ(said.exitCode, QLatin1StringView(row.last).contains(" ok "_L1) ? 0 : 1);
        EXPECT_EQ(said.errors, QString());
        EXPECT_FALSE(said.lines.join(u' ').contains(kSecret));
        // Far less than Qt's and libsrt's own limits, and more than a busy machine needs.
        EXPECT_LT(said.milliseconds, 15000);
    }
}

TEST(Check, WaitsNoLongerThanItsLimitForANameServer)
{
    const TemporaryFolder folder;
    folder.write("resolv.conf", "nameserver 192.0.2.1\n");
    folder.write("preset.json", presetText("RTMP").with("streamingProtocol", R"("RTMP")").text());
    // A network of its own, whose only interface drops what goes to the name server.
    const QStringList alone{u"unshare"_s,
                            u"--map-root-user"_s,
                            u"--mount"_s,
                            u"--net"_s,
                            u"sh"_s,
                            u"-ec"_s,
                            u"ip link set lo up; ip route add 192.0.2.1 dev lo; "
                            "mount --bind resolv.conf /etc/resolv.conf; exec \"$@\""_s,
                            u"sh"_s};
    const Said said =
        check(folder, {u"./preset.json"_s, u"--limit=1"_s, u"streamingURL=ingest.example.com"_s}, alone);
    if (said.lines.isEmpty())
        GTEST_SKIP() << "no network namespace: " << qPrintable(said.errors);
    EXPECT_EQ(said.exitCode, 1);
    EXPECT_TRUE(said.lines.last().endsWith("no name server has answered for ingest.example.com"_L1))
        << qPrintable(said.lines.last());
    // The system itself gives up after ten seconds.
    EXPECT_LT(said.milliseconds, 9000);
}

} // namespace
} // namespace vantle::test
