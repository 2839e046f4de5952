// SPDX-License-Identifier: MIT
#include "apps/vantlectl/obs/PlanDraft.h"

#include "VantlePresets/settings/LevelFit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace vantle::ctl::obs {

using namespace Qt::StringLiterals;

namespace {

constexpr auto kFirst = "videoSettings.0"_L1;

// What obs-websocket takes, in pixels.
constexpr qint64 kShortestSide = 8;
constexpr qint64 kLongestSide = 4096;
// What OBS's own form takes, in kbit/s.
constexpr qint64 kHighestBitRate = 1000000;
constexpr double kHighestRate = 1000; // far above any display, far below what overflows

struct ProfileName
{
    H264ProfileType type;
    QLatin1StringView x264;
};

// x264 has no Extended profile.
constexpr std::array<ProfileName, 3> kProfiles{{{H264ProfileType::baseline, "baseline"_L1},
                                                {H264ProfileType::main, "main"_L1},
                                                {H264ProfileType::high, "high"_L1}}};

QString field(QLatin1StringView name)
{
    return kFirst + u'.' + name;
}

void planSize(PlanDraft &draft, const VideoSettings &video)
{
    const bool isCustom = video.resolution() == VideoResolution::_custom;
    // OBS rounds down to what its scaler takes.
    const auto checkSide = [&](QLatin1StringView customField, qint64 side, qint64 step) {
        const QString path = field(isCustom ? customField : "resolution"_L1);
        if (side < kShortestSide || side > kLongestSide)
            draft.refuse(
                path,
                u"OBS is told of %1 to %2 pixels, not %3"_s.arg(kShortestSide).arg(kLongestSide).arg(side));
        else if (side % step != 0)
            draft.differ(path, u"OBS would send %1 pixels instead of %2"_s.arg(side - side % step).arg(side));
        return side - side % step;
    };
    const qint64 width = checkSide("customWidth"_L1, video.width(), 4);
    const qint64 height = checkSide("customHeight"_L1, video.height(), 2);
    const QSize size(static_cast<int>(std::clamp(width, kShortestSide, kLongestSide)),
                     static_cast<int>(std::clamp(height, kShortestSide, kLongestSide)));
    draft.plan.picture.size = size;
    const QSize canvas = draft.host.canvas;
    // A pixel more or less is not seen: 854 x 480 is 16 to 9.
    if (std::abs(qint64{canvas.width()} * size.height() - qint64{canvas.height()} * size.width()) >
        canvas.width() + canvas.height())
        draft.note(field("resolution"_L1),
                   u"OBS's canvas of %1 x %2 has another shape and will be stretched"_s.arg(canvas.width())
                       .arg(canvas.height()));
}

/// 29.97 and its like are exact fractions; others are taken to a thousandth.
void planRate(PlanDraft &draft, const VideoSettings &video)
{
    const double rate = video.frameRate();
    if (!(rate > 0.001 && rate <= kHighestRate)) {
        draft.refuse(field("frameRate"_L1), u"must be above 0 and at most %1"_s.arg(kHighestRate));
        return;
    }
    const double whole = std::round(rate);
    Picture &picture = draft.plan.picture;
    if (whole != rate && std::abs(whole * 1000 / 1001 - rate) < 0.005) {
        picture.rateNumerator = static_cast<int>(whole) * 1000;
        picture.rateDenominator = 1001;
        return;
    }
    const int thousandths = static_cast<int>(std::lround(rate * 1000));
    const int common = std::gcd(thousandths, 1000);
    picture.rateNumerator = thousandths / common;
    picture.rateDenominator = 1000 / common;
}

/// The profile's and level's options for x264; "" where x264 is left to itself.
QString profileOptions(PlanDraft &draft, const VideoSettings &video)
{
    const QString path = field("profile"_L1);
    const auto offered = offeredH264Profiles();
    const auto named = std::find_if(offered.begin(), offered.end(), [&](const H264Profile &profile) {
        return profile.displayName() == video.profile();
    });
    if (named == offered.end()) {
        draft.refuse(path, displayName(video.codec()) + " has no profile of this name"_L1);
        return {};
    }
    const auto known = std::find_if(kProfiles.begin(), kProfiles.end(),
                                    [&](const ProfileName &row) { return row.type == named->profile; });
    if (known == kProfiles.end()) {
        draft.differ(path, u"x264 has no such profile and would choose its own"_s);
        return {};
    }
    const LevelFit fit(video);
    if (!fit.bitRateFits() || fit.sizeFits() == false)
        draft.note(path,
                   "the level of "_L1 + video.profile() + " is too low for size, frame rate or bit rate"_L1);
    const QString level = named->level == H264ProfileLevel::_AutoLevel
                              ? QString()
                              : QString(" level="_L1 + levelText(named->level));
    return "profile="_L1 + known->x264 + level + u' ';
}

void planEncoder(PlanDraft &draft, const VideoSettings &video)
{
    if (video.bitRate() <= 0 || video.bitRate() > kHighestBitRate)
        draft.refuse(field("bitRate"_L1), u"must be above 0 and at most %1 kbit/s"_s.arg(kHighestBitRate));
    QString options;
    if (video.codec() == VideoCodec::h264)
        options = profileOptions(draft, video);
    else
        draft.differ(field("codec"_L1),
                     draft.host.version < QVersionNumber(29, 1)
                         ? u"OBS streams no HEVC before 29.1, it would send H.264"_s
                         : u"OBS has no HEVC without an encoder in hardware, it would send H.264"_s);
    // A key frame every two seconds, where services begin segments.
    const long interval = std::max(1L, std::lround(2 * std::clamp(video.frameRate(), 0.0, kHighestRate)));
    draft.set(u"SimpleOutput"_s, u"VBitrate"_s, QString::number(video.bitRate()));
    // Faster choices of x264 leave out tools of the High profile, and the stream comes out as less.
    draft.set(u"SimpleOutput"_s, u"Preset"_s, u"veryfast"_s);
    draft.set(u"SimpleOutput"_s, u"x264Settings"_s,
              options + u"keyint=%1 min-keyint=%1 scenecut=0"_s.arg(interval));
}

} // namespace

void planVideo(PlanDraft &draft)
{
    const VideoSettingsList &renditions = draft.preset.videoSettings();
    if (renditions.isEmpty()) {
        draft.refuse(u"videoSettings"_s, u"there is no video rendition"_s);
        return;
    }
    const VideoSettings &video = *renditions.first();
    planSize(draft, video);
    planRate(draft, video);
    planEncoder(draft, video);
    for (qsizetype i = 1; i < renditions.size(); ++i)
        draft.differ(u"videoSettings.%1"_s.arg(i), u"OBS sends one rendition, the first"_s);
}

} // namespace vantle::ctl::obs
