// SPDX-License-Identifier: MIT
#include "VantlePresets/check/CheckTarget.h"
#include "VantlePresets/check/OptionsRequest.h"
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"

#include <gtest/gtest.h>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;
using check::CheckTarget;
using check::Peer;

/// "host:port/path", with "tls " in front where it applies, or the problem.
QString shown(const CheckTarget &target)
{
    if (target.peer == Peer::nobody)
        return target.problem;
    if (target.peer == Peer::folder)
        return target.folder;
    return (target.isEncrypted ? u"tls "_s : QString()) + target.host + u' ' + QString::number(target.port) +
           u' ' + target.path;
}

TEST(CheckTarget, IsWhereTheEncoderSendsTo)
{
    struct Row
    {
        const char *kind;
        const char *url;
        const char *protocol;
        const char *port;
        const char *output;
        const char *target;
    };
    const Row rows[] = {
        {"YouTube", "", "RTMP", "1935", "", "a.rtmp.youtube.com 1935 /"},
        {"Facebook", "", "RTMPS", "443", "", "tls live-api-s.facebook.com 443 /"},
        {"RTMP", "h", "RTMPS", "443", "", "tls h 443 /"},
        {"RTMP", "rtmp://u:p@h:1936/live/key?a=b", "RTMP", "1", "", "h 1936 /live/key"},
        {"RTMP", "[::1]:9/live", "RTMP", "1935", "", "::1 9 /live"},
        {"RTMP", "h", "RTSP UDP", "0", "", "h 554 /"},
        {"RTMP", "h", "RTMP", "0", "", "h 1935 /"},
        {"RTMP", "h", "RTMP", "1935", "rtmps://other/a/key", "tls other 1935 /a/key"},
        {"RTMP", "h", "RTMP", "99999", "", "portNumber: 99999 is not a port, which is 1 to 65535"},
        {"RTMP", "h:99999", "RTMP", "1935", "", "streamingURL: 99999 is not a port, which is 1 to 65535"},
        {"RTMP", "rtmps://h", "RTMP", "1935", "", "streamingURL: rtmps is not what this preset sends"},
        {"RTMP", "h", "RTMP", "1935", "https://h", "--output: https is not what this preset sends"},
        {"RTMP", "rtmp:///live", "RTMP", "1935", "", "streamingURL: the host is missing"},
        {"RTMP", "a b", "RTMP", "1935", "", "streamingURL: is no host and no URL"},
        {"Wowza", "", "RTMP", "1935", "", "streamingURL: is empty: there is no host to ask"},
        {"SRT", "h", "RTMP", "9000", "", "h 9000 /"},
        {"SRT", "h", "RTMP", "9000", "srt://other:9", "other 9 /"},
        {"SRT", "h", "RTMP", "0", "", "portNumber: 0 is not a port, which is 1 to 65535"},
        {"SRT", "srt://:9000?mode=rendezvous", "RTMP", "0", "",
         "streamingURL: only the modes caller and listener can be checked"},
        {"SRT", "srt://:9000", "RTMP", "0", "",
         "streamingURL: the host is missing; an address that waits for a caller says mode=listener"},
        {"SRT", "srt://:9000?mode=listener", "RTMP", "0", "", " 9000 /"},
        {"SRT", "srt://h:9000/live", "RTMP", "0", "", "streamingURL: is no address such as srt://host:9000"},
        {"HLS", "", "RTMP", "0", "", "My Show"},
        {"HLS", "", "RTMP", "0", "/srv/show", "/srv/show"},
        {"HLS", "", "RTMP", "0", "https://h/a/b?key=c", "tls h 443 /a/b"},
        {"HLS", "", "RTMP", "0", "ftp://h/a", "--output: ftp is not what this preset sends"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.target);
        const auto text = [](const char *value) -> QByteArray { return '"' + QByteArray(value) + '"'; };
        const auto preset = decodePreset(presetText(row.kind)
                                             .with("streamingURL", text(row.url))
                                             .with("streamingProtocol", text(row.protocol))
                                             .with("portNumber", row.port)
                                             .with("authenticate", "false")
                                             .text());
        preset->setName(u"My Show"_s);
        EXPECT_EQ(shown(check::targetOf(*preset, QString::fromUtf8(row.output))),
                  QString::fromUtf8(row.target));
    }
}

TEST(OptionsAnswer, IsJudgedByItsStatus)
{
    struct Row
    {
        const char *line;
        bool hasLogin;
        bool isGood;
    };
    const Row rows[] = {
        {"HTTP/1.1 200 OK\r", false, true},
        {"HTTP/1.0 204\r", false, true},
        {"HTTP/2 200", false, true},
        {"HTTP/1.1 302 Found", false, false},
        {"HTTP/1.1 401 Unauthorized", false, false},
        {"HTTP/1.1 401 Unauthorized", true, true},
        {"HTTP/1.1 403 Forbidden", true, false},
        {"HTTP/1.1 404 Not Found", false, true},
        {"HTTP/1.1 405 Not Allowed", false, true},
        {"HTTP/1.1 410 Gone", false, false},
        {"HTTP/1.1 501 Not Implemented", false, true},
        {"HTTP/1.1 503 Busy", false, false},
        {"HTTP/1.1 100 Continue", false, false},
        {"RTSP/1.0 200 OK", false, false},
        {"", false, false},
    };
    for (const Row &row : rows) {
        const auto answer = check::judgeOptionsAnswer(row.line, "HTTP"_L1, row.hasLogin);
        EXPECT_EQ(answer.isGood, row.isGood) << row.line;
        EXPECT_FALSE(answer.text.isEmpty()) << row.line;
    }
}

} // namespace
} // namespace vantle::test
