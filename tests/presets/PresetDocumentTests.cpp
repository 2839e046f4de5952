// SPDX-License-Identifier: MIT
#include "VantlePresets/model/HLSVantlePreset.h"
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SRTVantlePreset.h"
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"

#include <QtCore/QHash>
#include <QtCore/QVariant>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;
using document::Format;

constexpr qint64 kMinimum = std::numeric_limits<qint64>::min();
constexpr qint64 kMaximum = std::numeric_limits<qint64>::max();

const QByteArray kLists =
    R"("videoSettings":)" + list({videoText()}) + R"(,"audioSettings":)" + list({audioText(true)});

TEST(PresetDocuments, NewPresetsWriteTheDefaultsOfTheirKind)
{
    const QByteArray connection = R"("streamingProtocol":"RTMP","portNumber":1935,"authenticate":false,)";
    const QByteArray service = R"("isBackup":false,"streamKey":"",)";
    struct Row
    {
        StreamingType type;
        QByteArray head;
    };
    for (const Row &row :
         {Row{StreamingType::youTube, R"({"type":"YouTube","streamingURL":"a.rtmp.youtube.com",)" +
                                          connection + service + R"("application":"live2",)"},
          {StreamingType::facebook, R"({"type":"Facebook","streamingURL":"live-api-s.facebook.com",)" +
                                        connection + service + R"("application":"rtmp",)"},
          {StreamingType::rtmp, R"({"type":"RTMP","streamingURL":"",)" + connection},
          {StreamingType::wowza, R"({"type":"Wowza","streamingURL":"",)" + connection},
          {StreamingType::srt, R"({"type":"SRT","streamingURL":"","portNumber":0,"authenticate":false,)"}})
        EXPECT_EQ(makePreset(row.type, u"New"_s)->encoded(Format::compact), row.head + kLists + '}');

    const auto hls = makePreset(StreamingType::hls, u"New"_s);
    const QByteArray id = hls->uuid().toByteArray(QUuid::WithoutBraces);
    EXPECT_EQ(hls->encoded(Format::compact), R"({"type":"HLS",)" + kLists + R"(,"id":")" + id + "\"}");
}

TEST(PresetDocuments, AHashTellsDocumentsApartExactlyWhenTheirTextsDiffer)
{
    const auto preset = RTMPVantlePreset::withType(StreamingType::wowza, u"New"_s, false, {});
    const auto rendition = preset->videoSettings().first();
    const auto track = preset->audioSettings().first();
    QHash<QByteArray, std::size_t> hashes;
    const std::function<void()> edits[] = {
        [] {},
        [&] { preset->setStreamingURL(u"ab"_s); },
        [&] { preset->setStreamingURL(u"a\xFFFD"_s); },
        [&] { preset->setStreamingURL(u"a"_s + QChar(0xD800)); }, // written as the one before
        [&] { preset->setPortNumber(1); },
        [&] { preset->setPortNumber(1 + (qint64{1} << 32)); },
        [&] { rendition->setFrameRate(0.0); },
        [&] { rendition->setFrameRate(-0.0); },
        [&] {
            track->setInputChannels({1, 2});
        },
        [&] {
            track->setInputChannels({2, 1});
        },
        [&] { track->setInputChannels({}); },
        [&] { track->setTrackName(u"x"_s); },
        [&] {
            preset->setAudioSettings({track, track});
        },
        [&] { preset->setVideoSettings({}); },
    };
    for (const auto &edit : edits) {
        edit();
        const QByteArray text = preset->encoded(Format::compact);
        const std::size_t hash = preset->documentHash();
        const bool isKnownHash = hashes.values().contains(hash);
        EXPECT_EQ(hashes.value(text, hash), hash) << text.toStdString();
        EXPECT_EQ(isKnownHash, hashes.contains(text)) << text.toStdString();
        hashes.insert(text, hash);
    }
    rendition->setFrameRate(std::numeric_limits<double>::infinity());
    preset->setVideoSettings({rendition});
    EXPECT_THROW(static_cast<void>(preset->documentHash()), EncodingError);
}

TEST(PresetDocuments, ThePrettyFormAddsWhiteSpaceOnly)
{
    const auto preset = RTMPVantlePreset::withType(StreamingType::rtmp, u"New"_s, false, {});
    preset->setStreamingURL(u"rtmp://host/"_s);
    preset->setVideoSettings({});
    preset->setAudioSettings({});
    EXPECT_EQ(preset->encoded(Format::pretty), R"({
    "type": "RTMP",
    "streamingURL": "rtmp://host/",
    "streamingProtocol": "RTMP",
    "portNumber": 1935,
    "authenticate": false,
    "videoSettings": [],
    "audioSettings": []
})");
}

/// One character of every plane and those that a writer could mistake.
QString everyPlane()
{
    std::u32string text = U"\"\\/\b\f\n\r\t\x01\x7F\u0085\u2028\uFEFF\uFFFD\uFFFF e\u0301";
    for (char32_t plane = 0; plane <= 16; ++plane)
        text += (plane << 16) + 0x1234;
    text += U'\0';
    return QString::fromStdU32String(text);
}

/// What documents of every kind keep of the extreme preset below.
void expectExtremeLists(const VantlePreset &preset)
{
    ASSERT_EQ(preset.videoSettings().size(), 2);
    const VideoSettings &video = *preset.videoSettings()[1];
    EXPECT_EQ(video.codec(), VideoCodec::hevc);
    EXPECT_EQ(video.resolution(), VideoResolution::_custom);
    EXPECT_EQ(video.customWidth(), kMinimum);
    EXPECT_EQ(video.customHeight(), kMaximum);
    EXPECT_EQ(video.frameRate(), 23.976);
    EXPECT_EQ(video.bitRate(), kMaximum);
    EXPECT_EQ(video.profile(), everyPlane());
    EXPECT_EQ(video.pid(), kMinimum);
    EXPECT_TRUE(std::signbit(preset.videoSettings()[0]->frameRate())) << "minus zero keeps its sign";

    ASSERT_EQ(preset.audioSettings().size(), 2);
    const AudioSettings &track = *preset.audioSettings()[0];
    EXPECT_EQ(track.bitRate(), kMinimum);
    EXPECT_EQ(track.language(), QString());
    EXPECT_EQ(track.trackName(), everyPlane());
    EXPECT_EQ(track.sampleRate(), kMaximum);
    EXPECT_EQ(track.bitsPerSample(), -1);
    EXPECT_EQ(track.inputChannels(), (QList<qint64>{kMaximum, 0, kMinimum, 0}));
    EXPECT_EQ(track.pid(), kMaximum);
    EXPECT_FALSE(track.isDefault());
    EXPECT_TRUE(preset.audioSettings()[1]->isDefault());
}

std::shared_ptr<VantlePreset> extremePreset(StreamingType type)
{
    const auto preset = makePreset(type, u"Extreme"_s);
    preset->videoSettings()[0]->setFrameRate(-0.0);
    preset->newVideoSettings();
    VideoSettings &video = *preset->videoSettings()[1];
    video.setCodec(VideoCodec::hevc);
    video.setResolution(VideoResolution::_custom);
    video.setCustomWidth(kMinimum);
    video.setCustomHeight(kMaximum);
    video.setFrameRate(23.976);
    video.setProfile(everyPlane());
    video.setPid(kMinimum);
    preset->newAudioSettings();
    preset->audioSettings()[1]->setIsDefault(true);
    AudioSettings &track = *preset->audioSettings()[0];
    track.setBitRate(kMinimum);
    track.setLanguage({});
    track.setTrackName(everyPlane());
    track.setSampleRate(kMaximum);
    track.setBitsPerSample(-1);
    track.setInputChannels({kMaximum, 0, kMinimum, 0});
    track.setPid(kMaximum);
    for (const char *text :
         {"streamingURL", "streamKey", "application", "authenticationLogin", "authenticationPassword"}) {
        if (preset->property(text).isValid()) {
            const QString value = everyPlane() + QString::fromLatin1(text);
            EXPECT_TRUE(preset->setProperty(text, value));
        }
    }
    for (const char *flag : {"isBackup", "authenticate"})
        preset->setProperty(flag, QVariant(true));
    preset->setProperty("portNumber", QVariant(kMinimum));
    if (auto *rtmp = dynamic_cast<RTMPVantlePreset *>(preset.get()))
        rtmp->setStreamingProtocol(RTMPVantlePreset::StreamingProtocol::rtspTCP);
    return preset;
}

TEST(PresetDocuments, BothFormsKeepEveryValueThatTheKindKeeps)
{
    const std::vector<const char *> srt{"streamingURL", "portNumber", "authenticate"};
    const std::vector<const char *> rtmp{"streamingURL",        "portNumber",
                                         "authenticate",        "streamingProtocol",
                                         "authenticationLogin", "authenticationPassword"};
    const std::vector<const char *> service{
        "streamingURL",           "portNumber", "authenticate", "streamingProtocol", "authenticationLogin",
        "authenticationPassword", "isBackup",   "streamKey",    "application"};
    struct Row
    {
        StreamingType type;
        std::vector<const char *> kept;
        std::vector<const char *> lost;
        bool keepsId;
    };
    for (const Row &row : {Row{StreamingType::hls, {}, {}, true},
                           {StreamingType::youTube, service, {}, false},
                           {StreamingType::rtmp, rtmp, {"isBackup", "streamKey", "application"}, false},
                           {StreamingType::wowza, rtmp, {"isBackup", "streamKey", "application"}, false},
                           {StreamingType::facebook, service, {}, false},
                           {StreamingType::srt, srt, {"isBackup", "streamKey", "application"}, false}}) {
        SCOPED_TRACE(displayName(row.type).toStdString());
        // No setter takes such a bit rate; a document does.
        const auto extreme = extremePreset(row.type);
        const QByteArray text = extreme->encoded(Format::compact)
                                    .replace(R"("frameRate":23.976,"bitRate":4500)",
                                             R"("frameRate":23.976,"bitRate":9223372036854775807)");
        const auto first = decodePreset(text);
        ASSERT_EQ(first->encoded(Format::compact), text);
        const auto fresh = makePreset(row.type, {});
        for (const Format format : {Format::compact, Format::pretty}) {
            const auto preset = decodePreset(first->encoded(format));
            EXPECT_EQ(preset->type(), row.type);
            EXPECT_EQ(preset->metaObject(), fresh->metaObject()) << "the class of the kind";
            expectExtremeLists(*preset);
            for (const char *key : row.kept)
                EXPECT_EQ(preset->property(key), extreme->property(key)) << key;
            for (const char *key : row.lost) {
                EXPECT_NE(preset->property(key), extreme->property(key)) << key;
                EXPECT_EQ(preset->property(key), QVariant(preset->property(key).metaType())) << key;
            }
            EXPECT_EQ(preset->uuid() == first->uuid(), row.keepsId);
        }
    }
}

TEST(PresetDocuments, LoginAndPasswordAreKeptWhileAuthenticationIsOn)
{
    const auto preset = decodeAs<RTMPVantlePreset>(presetText("RTMP").text());
    preset->setAuthenticate(false);
    const QByteArray text = preset->encoded(Format::compact);
    EXPECT_FALSE(text.contains("authenticationLogin") || text.contains("authenticationPassword"));
    EXPECT_EQ(preset->authenticationLogin(), u"login"_s) << "the object still knows it";
    EXPECT_EQ(decodeAs<RTMPVantlePreset>(text)->authenticationLogin(), QString());

    // Not read either, not even looked at.
    const auto other = decodeAs<RTMPVantlePreset>(
        presetText("RTMP").with("authenticate", "false").with("authenticationLogin", "7").text());
    EXPECT_EQ(other->authenticationLogin(), QString());
}

TEST(PresetDocuments, ALoneSurrogateIsReplaced)
{
    const auto preset = makePreset(StreamingType::hls, {});
    preset->audioSettings()[0]->setTrackName(u"a"_s + QChar(0xD800) + u"b"_s);
    EXPECT_EQ(decodePreset(preset->encoded(Format::pretty))->audioSettings()[0]->trackName(), u"a\uFFFDb"_s);
}

TEST(PresetDocuments, AFrameRateThatIsNotFiniteCantBeWritten)
{
    const auto preset = makePreset(StreamingType::hls, {});
    for (const double rate : {std::nan(""), std::numeric_limits<double>::infinity()}) {
        preset->videoSettings()[0]->setFrameRate(rate);
        EXPECT_THROW((void)preset->encoded(Format::pretty), EncodingError);
    }
}

} // namespace
} // namespace vantle::test
