// SPDX-License-Identifier: MIT
#include "VantlePresets/advice/AdviceList.h"
#include "VantlePresets/advice/NearestText.h"
#include "VantlePresets/advice/ServiceRules.h"
#include "VantlePresets/advice/Sources.h"

#include <algorithm>
#include <cmath>

namespace vantle::advice {
namespace {

using namespace Qt::StringLiterals;

constexpr auto kList = "videoSettings"_L1;

/// The row as people call it: "1080p60".
QString formatOf(const BitRateRow &row)
{
    return QString::number(row.side) + (row.isFast ? "p60"_L1 : "p30"_L1);
}

template <class Profiles>
QStringList namesOf(const Profiles &profiles)
{
    QStringList names;
    for (const auto &profile : profiles)
        names.append(profile.displayName());
    return names;
}

void adviseUnknownProfile(AdviceList &advice, qsizetype index, const VideoSettings &video)
{
    const bool isH264 = video.codec() == VideoCodec::h264;
    const QString nearest = nearestText(video.profile(), isH264 ? namesOf(video.availableH264Profiles())
                                                                : namesOf(video.availableHEVCProfiles()));
    const QString usual = isH264 ? u"H264_Main_AutoLevel"_s : u"HEVC_Main_AutoLevel"_s;
    advice.error(placeOf(kList, index, "profile"_L1),
                 displayName(video.codec()) + " has no profile of this name; "_L1 +
                     (nearest.isEmpty() ? "the usual one is "_L1 + usual : "the nearest is "_L1 + nearest),
                 source::kPresetFile);
}

void adviseLevel(AdviceList &advice, qsizetype index, const VideoSettings &video, const H264Profile &named)
{
    const auto fits = [&](const H264Profile &profile) {
        return profile.maxBitRate() >= video.bitRate() &&
               profile.isCompatible(video.width(), video.height(), video.frameRate());
    };
    if (fits(named))
        return;
    const auto &offered = video.availableH264Profiles();
    const auto better = std::find_if(offered.begin(), offered.end(), [&](const H264Profile &profile) {
        return profile.profile == named.profile && fits(profile);
    });
    advice.warning(placeOf(kList, index, "profile"_L1),
                   u"the level is too low for this frame size, frame rate or bit rate"_s +
                       (better == offered.end() ? u", and so is every other"_s
                                                : "; "_L1 + better->displayName() + " would do"_L1),
                   source::kH264);
}

void adviseProfile(AdviceList &advice, qsizetype index, const VideoSettings &video)
{
    if (video.codec() == VideoCodec::hevc) {
        const auto &offered = video.availableHEVCProfiles();
        if (!namesOf(offered).contains(video.profile()))
            adviseUnknownProfile(advice, index, video);
        else if (video.bitRate() > video.maxBitRate())
            advice.warning(placeOf(kList, index, "bitRate"_L1),
                           u"the profile allows at most %1 kbit/s"_s.arg(video.maxBitRate()),
                           source::kPresetFile);
        return;
    }
    const auto &offered = video.availableH264Profiles();
    const auto named = std::find_if(offered.begin(), offered.end(), [&](const H264Profile &profile) {
        return profile.displayName() == video.profile();
    });
    if (named == offered.end())
        adviseUnknownProfile(advice, index, video);
    else if (H264Profile::isComputable(video.width(), video.height(), video.frameRate()))
        adviseLevel(advice, index, video, *named);
    else
        advice.error(placeOf(kList, index), u"no level of H.264 reaches such a frame size and rate"_s,
                     source::kH264);
}

/// False when the picture is none, so that no rule can judge it.
bool advisePicture(AdviceList &advice, qsizetype index, const VideoSettings &video)
{
    const bool isCustom = video.resolution() == VideoResolution::_custom;
    bool isPicture = true;
    const auto adviseSide = [&](QLatin1StringView field, qint64 side) {
        const QString place = placeOf(kList, index, isCustom ? field : "resolution"_L1);
        isPicture = isPicture && side > 0;
        if (side <= 0)
            advice.error(place, u"a picture has at least one pixel each way"_s, source::kPresetFile);
        else if (side % 2 != 0 && video.codec() == VideoCodec::h264)
            advice.error(place, u"H.264 pictures with 4:2:0 samples have even sides"_s, source::kH264);
    };
    adviseSide("customWidth"_L1, video.width());
    adviseSide("customHeight"_L1, video.height());
    if (!(video.frameRate() > 0))
        advice.error(placeOf(kList, index, "frameRate"_L1), u"must be above 0"_s, source::kPresetFile);
    if (video.bitRate() <= 0)
        advice.error(placeOf(kList, index, "bitRate"_L1), u"must be above 0 kbit/s"_s, source::kPresetFile);
    return isPicture;
}

void adviseForService(AdviceList &advice, qsizetype index, const VideoSettings &video,
                      const ServiceRules &rules)
{
    const bool isH264 = video.codec() == VideoCodec::h264;
    if (!isH264 && !rules.takesHevc)
        advice.error(placeOf(kList, index, "codec"_L1), rules.name + " takes H.264 only"_L1,
                     rules.codecSource);
    if (video.frameRate() > rules.highestFrameRate)
        advice.error(placeOf(kList, index, "frameRate"_L1),
                     "%1 takes at most %2 frames per second"_L1.arg(rules.name,
                                                                    QString::number(rules.highestFrameRate)),
                     rules.frameRateSource);
    const BitRateRow *row = rowOf(rules, video.width(), video.height(), video.frameRate());
    if (!row) {
        advice.warning(placeOf(kList, index, "resolution"_L1),
                       "%1 names no bit rate for so large a picture; %2 lines are its most"_L1.arg(
                           rules.name, QString::number(rules.bitRates.front().side)),
                       rules.bitRates.front().source);
        return;
    }
    if (video.bitRate() <= row->limit(isH264))
        return;
    const QString range = isH264 && row->recommended > 0 ? QString::number(row->recommended)
                                                         : u"%1 to %2"_s.arg(row->lowest).arg(row->highest);
    advice.warning(placeOf(kList, index, "bitRate"_L1),
                   "%1 advises %2 kbit/s for %3 of %4"_L1.arg(rules.name, range, displayName(video.codec()),
                                                              formatOf(*row)),
                   row->source);
}

void adviseForFlv(AdviceList &advice, const VantlePreset &preset, const ServiceRules *rules)
{
    const VideoSettingsList &renditions = preset.videoSettings();
    for (qsizetype i = 0; i < renditions.size(); ++i) {
        const bool isTold = rules && !rules->takesHevc;
        if (renditions[i]->codec() == VideoCodec::hevc && !isTold)
            advice.warning(placeOf(kList, i, "codec"_L1),
                           u"HEVC over RTMP takes an encoder and a server of the enhanced protocol, such as "
                           "ffmpeg 6.1; H.264 goes everywhere"_s,
                           source::kFfmpegChanges);
    }
    if (renditions.size() < 2)
        return;
    if (rules)
        advice.error(placeOf(kList, 1), rules->name + " takes one video rendition in a stream"_L1,
                     source::kEnhancedRtmp);
    else
        advice.warning(placeOf(kList, 1),
                       u"RTMP carries one video rendition, unless both sides know version 2 of the enhanced "
                       "protocol"_s,
                       source::kEnhancedRtmp);
}

void adviseForHls(AdviceList &advice, const VideoSettingsList &renditions)
{
    constexpr double kHighestFrameRate = 60;
    constexpr double kShapeTolerance = 0.01; // 854 x 480 is 16:9
    const auto shapeOf = [](const VideoSettings &video) {
        return static_cast<double>(video.width()) / static_cast<double>(video.height());
    };
    for (qsizetype i = 0; i < renditions.size(); ++i) {
        if (renditions[i]->frameRate() > kHighestFrameRate)
            advice.warning(placeOf(kList, i, "frameRate"_L1), u"HLS has at most 60 frames per second"_s,
                           source::kAppleHls);
        if (renditions[i]->height() <= 0 || renditions[0]->height() <= 0)
            continue;
        const double first = shapeOf(*renditions[0]);
        if (std::abs(shapeOf(*renditions[i]) - first) > first * kShapeTolerance)
            advice.warning(placeOf(kList, i, "resolution"_L1),
                           u"the renditions of a ladder have one aspect ratio, that of the first"_s,
                           source::kAppleHls);
    }
}

} // namespace

void adviseVideo(AdviceList &advice, const VantlePreset &preset)
{
    const VideoSettingsList &renditions = preset.videoSettings();
    const ServiceRules *rules = rulesFor(preset);
    if (renditions.isEmpty() && (rules || preset.audioSettings().isEmpty()))
        advice.error(kList, u"there is no video rendition to send"_s, source::kPresetFile);
    for (qsizetype i = 0; i < renditions.size(); ++i) {
        const bool isPicture = advisePicture(advice, i, *renditions[i]);
        adviseProfile(advice, i, *renditions[i]);
        if (isPicture && rules)
            adviseForService(advice, i, *renditions[i], *rules);
    }
    if (carriesFlv(preset))
        adviseForFlv(advice, preset, rules);
    if (preset.type() == StreamingType::hls)
        adviseForHls(advice, renditions);
}

} // namespace vantle::advice
