// SPDX-License-Identifier: MIT
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"

#include <QtCore/QSet>

#include <gtest/gtest.h>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;

template <class Settings>
QByteArray compact(const Settings &settings)
{
    return settings.encoded(document::Format::compact);
}

template <class Settings>
std::shared_ptr<Settings> decode(const ObjectText &object)
{
    return Settings::decoded(object.text());
}

TEST(Settings, NewObjectsWriteTheirDefaults)
{
    EXPECT_EQ(compact(*VideoSettings::create()), videoText().text());
    EXPECT_EQ(compact(*AudioSettings::create()), audioText().text());
}

TEST(Settings, DecodingCorrectsNothing)
{
    const auto video = decode<VideoSettings>(videoText()
                                                 .with("bitRate", "999999")
                                                 .with("customWidth", "-5")
                                                 .with("profile", R"("no such profile")")
                                                 .without("pid"));
    EXPECT_EQ(video->bitRate(), 999999);
    EXPECT_EQ(video->customWidth(), -5); // kept although the resolution is not custom
    EXPECT_EQ(video->pid(), 256);

    const auto audio = decode<AudioSettings>(
        audioText().with("audioCodecFormatID", "0").with("bitRate", "-1").with("pid", "null"));
    EXPECT_EQ(compact(*audio), audioText().with("bitRate", "-1").text());
}

TEST(Settings, ChoosingAListedResolutionForgetsTheCustomSize)
{
    const auto video = VideoSettings::create();
    video->setResolution(VideoResolution::_custom);
    video->setCustomWidth(-5);
    video->setCustomHeight(500);
    EXPECT_EQ(video->width(), -5);
    video->setResolution(VideoResolution::_custom);
    EXPECT_EQ(video->height(), 500);
    video->setResolution(VideoResolution::_1280_720);
    EXPECT_EQ(video->customWidth(), 0);
    EXPECT_EQ(video->customHeight(), 0);
    EXPECT_EQ(video->width(), 1280);
    EXPECT_EQ(video->height(), 720);
}

TEST(Settings, BitRateKeepsWithinTheLimitOfTheProfileByName)
{
    struct Row
    {
        VideoCodec codec;
        QString profile;
        qint64 assigned;
        qint64 stored;
    };
    const auto h264 = VideoCodec::h264;
    const auto hevc = VideoCodec::hevc;
    for (const Row &row : {Row{h264, u"H264_Main_AutoLevel"_s, -1, 0},
                           {h264, u"H264_Main_AutoLevel"_s, std::numeric_limits<qint64>::min(), 0},
                           {h264, u"H264_Main_3_0"_s, 10000, 10000},
                           {h264, u"H264_Main_3_0"_s, 20000, 10000},
                           {h264, u"H264_Extended_5_0"_s, 1 << 30, 135000},
                           {h264, u"H264_Extended_3_0"_s, 1, 0}, // not offered
                           {hevc, u"H264_Main_AutoLevel"_s, 4500, 0},
                           {hevc, u"HEVC_Main10_AutoLevel"_s, 4500, 0}, // the name has a blank
                           {hevc, u"HEVC_Main 10_AutoLevel"_s, 240001, 240000}}) {
        const auto video = VideoSettings::create();
        video->setCodec(row.codec);
        video->setProfile(row.profile);
        EXPECT_EQ(video->bitRate(), 4500) << "a change of codec or profile leaves the rate alone";
        video->setBitRate(row.assigned);
        EXPECT_EQ(video->bitRate(), row.stored) << row.profile.toStdString() << ' ' << row.assigned;
    }

    const auto video = VideoSettings::create();
    video->setAvailableH264Profiles({});
    video->setBitRate(1);
    EXPECT_EQ(video->bitRate(), 0);
    EXPECT_EQ(VideoSettings::create()->maxBitRate(), 240000) << "each object has its own list";
}

TEST(Settings, UpdateLimitsTheBitRateByTheOldProfile)
{
    const auto target = VideoSettings::create();
    target->setProfile(u"H264_Main_3_0"_s);
    const auto source = VideoSettings::create();
    source->setResolution(VideoResolution::_custom);
    source->setCustomWidth(1000);
    source->setCustomHeight(600);
    source->setFrameRate(59.94);
    source->setProfile(u"H264_High_5_2"_s);
    source->setBitRate(50000);
    source->setPid(300);
    target->update(*source);
    EXPECT_EQ(target->bitRate(), 10000);
    target->update(*source);
    EXPECT_EQ(compact(*target), compact(*source));
}

TEST(Settings, RenditionsEqualByFourValuesTracksByIdentity)
{
    const auto a = VideoSettings::create();
    const auto b = VideoSettings::create();
    b->setBitRate(1);
    b->setPid(1);
    b->setCustomWidth(1);
    EXPECT_EQ(*a, *b);
    b->setFrameRate(29.97);
    EXPECT_NE(*a, *b);

    const auto track = AudioSettings::create();
    const auto other = AudioSettings::create();
    other->update(*track);
    EXPECT_EQ(compact(*track), compact(*other));
    EXPECT_NE(*track, *other);
    EXPECT_EQ(*track, *track);
}

TEST(Settings, IdentifiersAreRandomUuids)
{
    QList<QUuid> ids;
    for (int i = 0; i < 100; ++i)
        ids << VideoSettings::create()->id() << AudioSettings::create()->id();
    EXPECT_EQ(QSet<QUuid>(ids.begin(), ids.end()).size(), 200);
    for (const QUuid &id : ids) {
        EXPECT_EQ(id.version(), QUuid::Random);
        EXPECT_EQ(id.variant(), QUuid::DCE);
    }
}

TEST(Settings, TextsForPeopleAndFileNames)
{
    const auto video = VideoSettings::create();
    EXPECT_EQ(video->variantName(), u"H_264_1920x1080_4500"_s);
    EXPECT_EQ(video->displayName(), u"Video Variant: H.264 1920 x 1080 @ 30.0"_s);
    EXPECT_TRUE(video->aggregateDescription().endsWith(u" (1920 x 1080 @ 30.0 (H264_Main_AutoLevel)"_s));
    for (const auto &[rate, text] : {std::pair{23.976, u"23.976"_s}, {1e16, u"1e+16"_s}, {-0.0, u"-0.0"_s}}) {
        video->setFrameRate(rate);
        EXPECT_EQ(video->displayName(), u"Video Variant: H.264 1920 x 1080 @ "_s + text);
    }
    video->setCodec(VideoCodec::hevc);
    video->setProfile(u"HEVC_Main_AutoLevel"_s);
    video->setResolution(VideoResolution::_custom);
    video->setCustomWidth(1000);
    video->setCustomHeight(600);
    video->setBitRate(2500);
    EXPECT_EQ(video->variantName(), u"HEVC_1000x600_2500"_s);
    EXPECT_EQ(video->videoCodecType(), u"AVVideoCodecTypeHEVC"_s);

    const auto track = AudioSettings::create();
    EXPECT_EQ(track->aggregateDescription(), u"English (en) - AAC LC - @ 44100Hz - 128 kbps"_s);
    EXPECT_EQ(track->displayName(), u"Audio Track English"_s);
    track->setTrackName(u"Dolby 5.1"_s);
    track->setBitRate(256);
    EXPECT_EQ(track->variantName(), u"Dolby_5_1_256"_s);
}

TEST(SettingsDeathTest, ValuesOutsideAnEnumerationStopTheProcess)
{
    const auto video = VideoSettings::create();
    video->setCodec(static_cast<VideoCodec>(3));
    EXPECT_DEATH((void)video->videoCodecType(), "Programming fault: unexpected VideoCodec value");
    EXPECT_DEATH(video->setBitRate(1), "unexpected VideoCodec value");
    EXPECT_DEATH((void)audioCodecFormatID(static_cast<AudioCodecID>(1)), "unexpected AudioCodecID value");
    EXPECT_DEATH((void)makePreset(static_cast<StreamingType>(7), {}), "unexpected StreamingType value");
}

} // namespace
} // namespace vantle::test
