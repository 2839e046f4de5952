// SPDX-License-Identifier: MIT
#include "apps/vantlectl/obs/Plan.h"
#include "apps/vantlectl/obs/RunningObs.h"
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;
using namespace ctl::obs;
using testing::ElementsAre;
using testing::StartsWith;

/// A preset that OBS can carry whole.
ObjectText goodPreset(const QByteArray &kind)
{
    return presetText(kind)
        .with("streamingURL", R"("host.example/live/event")")
        .with("streamingProtocol", R"("RTMP")")
        .with("portNumber", "1935")
        .with("audioSettings", list({audioText(true).with("sampleRate", "48000")}));
}

ObjectText goodSrt()
{
    return goodPreset("SRT").with("streamingURL", R"("host.example")").with("authenticate", "false");
}

Host hostOf(const QString &version = u"29.0.2"_s)
{
    return {QVersionNumber::fromString(version), QSize(1920, 1080), {48000, u"Stereo"_s}};
}

Plan planOf(const ObjectText &preset, const Host &host = hostOf())
{
    return planFor(*decodePreset(preset.text()), host);
}

ObjectText withVideo(const char *key, const char *value)
{
    return goodPreset("RTMP").with("videoSettings", list({videoText().with(key, value)}));
}

ObjectText withSize(const char *width, const char *height)
{
    return goodPreset("RTMP").with("videoSettings", list({videoText()
                                                              .with("resolution", R"("custom")")
                                                              .with("customWidth", width)
                                                              .with("customHeight", height)}));
}

ObjectText withAudio(const char *key, const char *value)
{
    return goodPreset("RTMP").with("audioSettings",
                                   list({audioText(true).with("sampleRate", "48000").with(key, value)}));
}

TEST(ObsPlan, SaysByFieldWhatObsCannotCarry)
{
    enum Outcome { refused, differs };
    struct Row
    {
        ObjectText preset;
        Outcome outcome;
        const char *line; ///< its beginning; the only one
    };
    const ObjectText other = videoText();
    const auto hevc = videoText().with("codec", R"("HEVC")").with("profile", R"("HEVC_Main_AutoLevel")");
    const Row rows[] = {
        {goodPreset("HLS"), refused, "type: OBS sends HLS to"},
        {goodPreset("RTMP").with("streamingProtocol", R"("RTSP TCP")"), refused,
         "streamingProtocol: OBS does"},
        {goodPreset("RTMP").with("streamingURL", R"("srt://host/a/b")"), refused,
         "streamingURL: srt does not"},
        {goodPreset("RTMP").with("streamingURL", R"("a b")"), refused, "streamingURL: is no host and no URL"},
        {goodPreset("RTMP").with("streamingURL", R"("/live/event")"), refused, "streamingURL: the host is"},
        {goodPreset("RTMP").with("portNumber", "0"), refused, "portNumber: 0 is not a port"},
        {goodPreset("RTMP").with("streamingURL", R"("rtmp://h:0/live/key")"), refused,
         "streamingURL: 0 is not a port"},
        {goodPreset("Wowza").with("streamingURL", R"("host/live")"), refused, "streamKey: Wowza files keep"},
        {goodPreset("YouTube").with("streamKey", R"("")"), refused, "streamKey: is missing"},
        {goodPreset("YouTube").with("streamKey", R"("a\nb")"), refused, "streamKey: holds control"},
        {goodPreset("RTMP").with("authenticationLogin", R"("")"), refused, "authenticationLogin: is missing"},
        {goodSrt().with("authenticate", "true"), refused, "streamKey: is the passphrase while"},
        {goodSrt().with("streamingURL", R"("a?passphrase=short")"), refused,
         "streamingURL: a passphrase has"},
        {goodSrt().with("streamingURL", R"("a?linger=1")"), refused,
         "streamingURL: OBS is told of passphrase"},
        {goodSrt().with("streamingURL", R"("a?mode=x&latency=1")"), refused, "streamingURL: mode is"},
        {goodSrt().with("streamingURL", R"("a?latency=200000")"), refused,
         "streamingURL: latency is 0 to 10000 milliseconds"},
        {goodSrt().with("streamingURL", "\"a?passphrase=" + QByteArray(65, 'p') + '"'), refused,
         "streamKey: a passphrase has"},
        {goodSrt().with("streamingURL", R"("rtmp://a")"), refused, "streamingURL: is no address such as"},
        {goodSrt().with("videoSettings", "[]"), refused, "videoSettings: there is no video"},
        {withVideo("frameRate", "0"), refused, "videoSettings.0.frameRate: must be above 0"},
        {withVideo("frameRate", "1e300"), refused, "videoSettings.0.frameRate: must be above 0"},
        {withVideo("bitRate", "0"), refused, "videoSettings.0.bitRate: must be above 0"},
        {withVideo("bitRate", "9223372036854775807"), refused, "videoSettings.0.bitRate: must be above 0"},
        {withVideo("profile", R"("HEVC_Main_AutoLevel")"), refused, "videoSettings.0.profile: H.264 has no"},
        {withSize("6", "360"), refused, "videoSettings.0.customWidth: OBS is told of 8 to 4096 pixels"},
        {withSize("640", "9223372036854775807"), refused, "videoSettings.0.customHeight: OBS is told of"},
        {withSize("642", "360"), differs, "videoSettings.0.customWidth: OBS would send 640 pixels"},
        {withSize("640", "361"), differs, "videoSettings.0.customHeight: OBS would send 360 pixels"},
        {withVideo("profile", R"("H264_Extended_5_0")"), differs,
         "videoSettings.0.profile: x264 has no such"},
        {goodSrt().with("videoSettings", list({hevc})), differs,
         "videoSettings.0.codec: OBS streams no HEVC"},
        {goodSrt().with("videoSettings", list({other, hevc})), differs, "videoSettings.1: OBS sends one"},
        {withAudio("bitRate", "100"), differs, "audioSettings.0.bitRate: OBS would send 128 kbit/s"},
        {withAudio("bitRate", "-1"), differs, "audioSettings.0.bitRate: OBS would send 64 kbit/s"},
        {withAudio("bitRate", "640"), differs, "audioSettings.0.bitRate: OBS would send 576 kbit/s"},
        {withAudio("sampleRate", "44100"), differs,
         "audioSettings.0.sampleRate: OBS mixes to 48000 Hz and takes"},
        {withAudio("sampleRate", "96000"), differs, "audioSettings.0.sampleRate: OBS has no 96000 Hz"},
        {withAudio("inputChannels", "[0]"), differs, "audioSettings.0.inputChannels: OBS mixes to Stereo"},
        {withAudio("inputChannels", "[0,1,2,3,4,5,6]"), differs,
         "audioSettings.0.inputChannels: OBS has no mix of 7"},
        {goodSrt().with("audioSettings", "[]"), differs, "audioSettings: OBS always sends a track"},
    };
    for (const Row &row : rows) {
        const Plan plan = planOf(row.preset);
        std::vector<std::string> lines;
        for (const QString &line : plan.refusals + plan.differences)
            lines.push_back(line.toStdString());
        EXPECT_THAT(lines, ElementsAre(StartsWith(row.line)));
        EXPECT_EQ(plan.refusals.isEmpty(), row.outcome == differs) << row.line;
    }
    EXPECT_THAT(planOf(goodSrt(), hostOf(u"27.2"_s)).refusals,
                ElementsAre(u"OBS: version 27.2 is too old, 28 is "
                            "the first that can be told"_s));
    EXPECT_TRUE(planOf(goodSrt().with("videoSettings", list({hevc})), hostOf(u"30.1.0"_s))
                    .differences.constFirst()
                    .contains("without an encoder in hardware"_L1));
}

TEST(ObsPlan, OnlyARestartChangesTheAudioFormat)
{
    EXPECT_TRUE(planOf(withAudio("sampleRate", "44100")).needsRestart);
    EXPECT_EQ(planOf(withAudio("sampleRate", "44100")).audio, (AudioFormat{44100, u"Stereo"_s}));
    EXPECT_TRUE(planOf(withAudio("inputChannels", "[0,1,2,3,4,5]")).needsRestart);
    // What OBS can't have stays as it is.
    EXPECT_FALSE(planOf(withAudio("sampleRate", "96000")).needsRestart);
    EXPECT_EQ(planOf(withAudio("sampleRate", "96000")).audio, hostOf().audio);

    const AudioFormat stored{44100, u"Mono"_s};
    const AudioFormat running{48000, u"Stereo"_s};
    struct Row
    {
        QString note;
        QString run;
        AudioFormat expected;
    };
    const Row rows[] = {{{}, u"7.1"_s, stored},
                        {u"7.1 48000 Stereo"_s, u"7.1"_s, running},
                        {u"7.1 48000 Stereo"_s, u"7.2"_s, stored},
                        {u"7.1 48000"_s, u"7.1"_s, stored}};
    for (const Row &row : rows)
        EXPECT_EQ(runningAudio(stored, PendingAudio::parse(row.note), row.run), row.expected)
            << row.note.toStdString();
}

TEST(ObsPlan, TellsWhereToSend)
{
    struct Row
    {
        ObjectText preset;
        QString server;
        QString key;
        QString login; ///< with the password
    };
    const Row rows[] = {
        {goodPreset("RTMP"), u"rtmp://host.example:1935/live"_s, u"event"_s, u"login:password"_s},
        {goodPreset("RTMP").with("streamingURL", R"("rtmp://u:p@[::1]:99/a/b/c?d=e")"),
         u"rtmp://[::1]:99/a/b"_s, u"c?d=e"_s, u"u:p"_s},
        {goodPreset("YouTube")
             .with("streamingURL", R"("")")
             .with("streamingProtocol", R"("RTMPS")")
             .with("authenticate", "false"),
         u"rtmps://a.rtmp.youtube.com:1935/app"_s, u"key"_s, u":"_s},
        {goodSrt(), u"srt://host.example:1935?mode=caller&latency=200000"_s, u""_s, u":"_s},
        {goodSrt().with(
             "streamingURL",
             R"("srt://host:9?srt_streamid=a%26b&passphrase=ten-letters&mode=listener&latency=5&pkt_size=188")"),
         u"srt://host:9?mode=listener&latency=5000&pbkeylen=16"_s, u"a&b"_s, u":ten-letters"_s},
        {goodSrt().with("streamingURL", R"("host.example?pbkeylen=32")"),
         u"srt://host.example:1935?mode=caller&latency=200000&pbkeylen=32"_s, u""_s, u":"_s},
    };
    for (const Row &row : rows) {
        const Plan plan = planOf(row.preset);
        EXPECT_TRUE(plan.refusals.isEmpty()) << plan.refusals.join(u' ').toStdString();
        EXPECT_EQ(plan.service["server"_L1].toString(), row.server);
        EXPECT_EQ(plan.service["key"_L1].toString(), row.key);
        EXPECT_EQ(plan.service["username"_L1].toString() + u':' + plan.service["password"_L1].toString(),
                  row.login);
        EXPECT_EQ(plan.service["use_auth"_L1].toBool(), row.login != ":"_L1);
    }
}

TEST(ObsPlan, FrameRatesAreFractions)
{
    const std::tuple<const char *, int, int> rows[] = {
        {"30.0", 30, 1}, {"29.97", 30000, 1001}, {"23.976", 24000, 1001}, {"12.5", 25, 2}, {"59.9", 599, 10}};
    for (const auto &[rate, numerator, denominator] : rows) {
        const Picture picture = planOf(withVideo("frameRate", rate)).picture;
        EXPECT_EQ(picture, (Picture{QSize(1920, 1080), numerator, denominator})) << rate;
    }
}

TEST(ObsPlan, ProfilesHaveHarmlessNamesOfTheirOwn)
{
    EXPECT_EQ(profileName(u"Evening Show"_s), u"Vantle Evening Show"_s);
    QStringList names;
    for (const QString &name : {u"Evening  Show"_s, u"../Evening Show"_s, u"Evening Show "_s, u"日本"_s,
                                u"日"_s, QString(300, u'a'), QString(299, u'a')}) {
        names.append(profileName(name));
        EXPECT_TRUE(names.last().startsWith("Vantle "_L1) && names.last().size() < 70);
    }
    EXPECT_EQ(names.removeDuplicates(), 0);
    EXPECT_FALSE(names.contains(profileName(u"Evening Show"_s)));
}

} // namespace
} // namespace vantle::test
