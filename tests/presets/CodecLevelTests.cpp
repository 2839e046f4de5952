// SPDX-License-Identifier: MIT
#include "VantlePresets/settings/VideoSettings.h"
#include "tests/support/QtPrinters.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;
using Level = H264ProfileLevel;

constexpr qint64 kHuge = std::numeric_limits<qint64>::max();

QString namesOf(const QList<H264Profile> &profiles, qsizetype first, qsizetype count)
{
    QStringList names;
    for (const H264Profile &profile : profiles.mid(first, count))
        names += profile.displayName();
    return names.join(u' ');
}

TEST(CodecLevels, OfferedProfilesComeByTypeThenLevel)
{
    const auto h264 = VideoSettings::create()->availableH264Profiles();
    ASSERT_EQ(h264.size(), 32);
    EXPECT_EQ(namesOf(h264, 0, 10),
              u"H264_Baseline_3_0 H264_Baseline_3_1 H264_Baseline_3_2 H264_Baseline_4_0 H264_Baseline_4_1 "
              "H264_Baseline_4_2 H264_Baseline_5_0 H264_Baseline_5_1 H264_Baseline_5_2 "
              "H264_Baseline_AutoLevel"_s);
    EXPECT_EQ(namesOf(h264, 10, 1), u"H264_Main_3_0"_s);
    EXPECT_EQ(namesOf(h264, 29, 3), u"H264_High_AutoLevel H264_Extended_5_0 H264_Extended_AutoLevel"_s);
    EXPECT_EQ(
        VideoSettings::create()->hevcProfileLevels({}, 0),
        (QStringList{u"HEVC_Main_AutoLevel"_s, u"HEVC_Main 10_AutoLevel"_s, u"HEVC_Main 422-10_AutoLevel"_s,
                     u"HEVC_Monochrome_AutoLevel"_s, u"HEVC_Monochrome 10_AutoLevel"_s}));
}

/// The first level, in the table's order, that suits size and rate; nothing when none does.
std::optional<Level> lowestLevel(qint64 width, qint64 height, double rate)
{
    for (const Level level : h264ProfileLevels().values()) {
        if (H264Profile{H264ProfileType::baseline, level}.isCompatible(width, height, rate))
            return level;
    }
    return std::nullopt;
}

TEST(CodecLevels, LowestLevelOfASizeAndRate)
{
    struct Row
    {
        qint64 width, height;
        double rate;
        std::optional<Level> lowest;
    };
    for (const Row &row : {
             Row{720, 576, 25, Level::_3_0},    // 1620 x 25 = 40500, the very limit
             {720, 576, 25.001, Level::_3_1},   //
             {1280, 720, 30, Level::_3_1},      // 108000
             {1280, 720, 60, Level::_3_2},      // 216000
             {1920, 1080, 30, Level::_4_0},     // 243000
             {1920, 1080, 60, Level::_4_2},     // 486000; 4.1 has the rate of 4.0
             {1920, 1080, 64.6, Level::_5_0},   // just above 522240
             {3840, 2160, 30, Level::_5_1},     // 972000
             {3840, 2160, 60, Level::_5_2},     //
             {3840, 2160, 64.01, std::nullopt}, // just above 2073600
             {256, 40500, 0, Level::_3_0},      // without a rate, the picture alone
             {256, 40501, 0, Level::_3_1},
             {0, 1080, 1e9, Level::_3_0},    // nothing to encode
             {-1920, 1080, 60, Level::_3_0}, // negative counts keep below every limit
             {1, 255, 1, Level::_3_0},       // less than one macroblock
         }) {
        EXPECT_EQ(lowestLevel(row.width, row.height, row.rate), row.lowest)
            << row.width << " x " << row.height << " @ " << row.rate;
    }
}

TEST(CodecLevels, SuitableProfilesGoByTheObjectsOwnSize)
{
    const auto video = VideoSettings::create();
    video->setResolution(VideoResolution::_3840_2160);
    // The resolution argument has no influence.
    EXPECT_EQ(video->profileLevels(VideoCodec::h264, VideoResolution::_416_234, 60),
              (QStringList{u"H264_Baseline_5_2"_s, u"H264_Baseline_AutoLevel"_s, u"H264_Main_5_2"_s,
                           u"H264_Main_AutoLevel"_s, u"H264_High_5_2"_s, u"H264_High_AutoLevel"_s,
                           u"H264_Extended_AutoLevel"_s}));
}

TEST(CodecLevels, EncoderConstants)
{
    struct Row
    {
        VideoCodec codec;
        QString profile, constant;
    };
    const auto h264 = VideoCodec::h264;
    const auto hevc = VideoCodec::hevc;
    for (const Row &row : {Row{h264, u"H264_Baseline_3_0"_s, u"H264_Baseline_3_0"_s},
                           {h264, u"H264_High_AutoLevel"_s, u"H264_High_AutoLevel"_s},
                           {h264, u"H264_Extended_5_0"_s, u"H264_Extended_5_0"_s},
                           {h264, u"HEVC_Main 10_AutoLevel"_s, u"H264_Main_AutoLevel"_s},
                           {hevc, u"HEVC_Main 10_AutoLevel"_s, u"HEVC_Main10_AutoLevel"_s},
                           {hevc, u"HEVC_Main 422-10_AutoLevel"_s, u"HEVC_Main42210_AutoLevel"_s},
                           {hevc, u"HEVC_Monochrome 10_AutoLevel"_s, u"HEVC_Monochrome10_AutoLevel"_s},
                           {hevc, u"H264_High_5_2"_s, u"HEVC_Main_AutoLevel"_s}}) {
        const auto video = VideoSettings::create();
        video->setCodec(row.codec);
        video->setProfile(row.profile);
        EXPECT_EQ(video->videoToolboxProfile(), u"kVTProfileLevel_"_s + row.constant);
    }
    // Not offered, but a host may build it: only two constants of the type exist.
    EXPECT_EQ((H264Profile{H264ProfileType::extended, Level::_3_1}).videoToolboxProfile(),
              u"kVTProfileLevel_H264_Extended_5_0"_s);
}

TEST(CodecLevels, WhatCanBeComputed)
{
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(H264Profile::isComputable(kHuge, 1, 1));
    EXPECT_FALSE(H264Profile::isComputable(kHuge, 2, 0));
    EXPECT_FALSE(H264Profile::isComputable(kHuge, 1, 256)); // 2^63 macroblocks per second
    EXPECT_FALSE(H264Profile::isComputable(1, 1, inf));
    EXPECT_FALSE(H264Profile::isComputable(0, 1, std::nan("")));
    // The picture alone decides first.
    const H264Profile profile{H264ProfileType::main, Level::_5_2};
    EXPECT_FALSE(profile.isCompatible(kHuge, 1, std::nan("")));
    EXPECT_FALSE(profile.isCompatible(1 << 20, 1 << 10, inf));
}

TEST(CodecLevelsDeathTest, ImpossibleCountsStopTheProcess)
{
    const H264Profile profile{H264ProfileType::main, Level::_5_2};
    EXPECT_DEATH((void)profile.isCompatible(kHuge, 2, 1), "too large to count its macroblocks");
    EXPECT_DEATH((void)profile.isCompatible(16, 16, std::nan("")), "too large to count its macroblocks");
    EXPECT_DEATH((void)(H264Profile{H264ProfileType::main, static_cast<Level>(10)}).maxBitRate(),
                 "unexpected H264ProfileLevel value");
}

} // namespace
} // namespace vantle::test
