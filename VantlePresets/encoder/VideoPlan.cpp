// SPDX-License-Identifier: MIT
#include "VantlePresets/encoder/PlanDraft.h"

#include "VantlePresets/settings/LevelFit.h"

#include <QtCore/QLocale>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace vantle::encoder {
namespace {

using namespace Qt::StringLiterals;

constexpr auto kList = "videoSettings"_L1;

/// How the encoder is told of a profile.
struct ProfileChoice
{
    QLatin1StringView name;        ///< as the encoder names it; "" when the pixel format alone tells
    QLatin1StringView pixelFormat; ///< of the samples
    int widthStep;                 ///< sizes have to be multiples of these
    int heightStep;
};

struct H264Choice
{
    H264ProfileType type;
    ProfileChoice choice;
};

struct HEVCChoice
{
    HEVCProfileType type;
    ProfileChoice choice;
};

// libx264 has no Extended profile.
constexpr std::array<H264Choice, 3> kH264Choices{
    {{H264ProfileType::baseline, {"baseline"_L1, "yuv420p"_L1, 2, 2}},
     {H264ProfileType::main, {"main"_L1, "yuv420p"_L1, 2, 2}},
     {H264ProfileType::high, {"high"_L1, "yuv420p"_L1, 2, 2}}}};

constexpr std::array<HEVCChoice, 5> kHEVCChoices{
    {{HEVCProfileType::main, {"main"_L1, "yuv420p"_L1, 2, 2}},
     {HEVCProfileType::main10, {"main10"_L1, "yuv420p10le"_L1, 2, 2}},
     {HEVCProfileType::main42210, {"main422-10"_L1, "yuv422p10le"_L1, 2, 1}},
     {HEVCProfileType::monochrome, {{}, "gray"_L1, 1, 1}},
     {HEVCProfileType::monochrome10, {{}, "gray10le"_L1, 1, 1}}}};

constexpr int kSmallestHEVCSide = 16; // libx265 refuses less
constexpr double kHighestRate = 1000; // far above any display, far below what overflows a time base
constexpr qint64 kHighestBitRate = std::numeric_limits<int>::max() / 1000; // ffmpeg counts bit/s in an int

/// A profile and level that a rendition names.
struct NamedProfile
{
    const ProfileChoice *choice = nullptr; ///< null when the encoder has no such profile
    QString level;                         ///< "" for the encoder's own choice
};

template <class Choices, class Type>
const ProfileChoice *choiceOf(const Choices &choices, Type type)
{
    const auto found =
        std::find_if(choices.begin(), choices.end(), [&](const auto &row) { return row.type == type; });
    return found == choices.end() ? nullptr : &found->choice;
}

/// Nothing when the codec offers no profile of the name.
std::optional<NamedProfile> profileOf(const VideoSettings &video)
{
    const auto isNamed = [&](const auto &profile) { return profile.displayName() == video.profile(); };
    if (video.codec() == VideoCodec::h264) {
        const auto offered = offeredH264Profiles();
        const auto found = std::find_if(offered.begin(), offered.end(), isNamed);
        if (found == offered.end())
            return std::nullopt;
        const bool isAutomatic = found->level == H264ProfileLevel::_AutoLevel;
        return NamedProfile{choiceOf(kH264Choices, found->profile),
                            isAutomatic ? QString() : levelText(found->level)};
    }
    const auto offered = offeredHEVCProfiles();
    const auto found = std::find_if(offered.begin(), offered.end(), isNamed);
    if (found == offered.end())
        return std::nullopt;
    return NamedProfile{choiceOf(kHEVCChoices, found->profile), {}};
}

/// The frame rate as ffmpeg takes it; 29.97 and its like are exact fractions there.
QString rateText(double rate)
{
    const double whole = std::round(rate);
    if (whole != rate && std::abs(whole * 1000 / 1001 - rate) < 0.005)
        return QString::number(whole, 'f', 0) + "000/1001"_L1;
    return QString::number(rate, 'f', QLocale::FloatingPointShortest);
}

void checkSize(PlanDraft &draft, qsizetype index, const VideoSettings &video, const ProfileChoice &choice)
{
    const bool isCustom = video.resolution() == VideoResolution::_custom;
    const int smallest = video.codec() == VideoCodec::hevc ? kSmallestHEVCSide : 1;
    const auto checkSide = [&](QLatin1StringView customField, qint64 side, int step) {
        const QString path = fieldPath(kList, index, isCustom ? customField : "resolution"_L1);
        if (side < smallest)
            draft.problem(path, u"%1 pixels are too few"_s.arg(side));
        else if (side % step != 0)
            draft.problem(path, u"%1 is odd, which %2 pictures can't be"_s.arg(side).arg(choice.pixelFormat));
    };
    checkSide("customWidth"_L1, video.width(), choice.widthStep);
    checkSide("customHeight"_L1, video.height(), choice.heightStep);
    // ffmpeg's own limit for a picture.
    constexpr qint64 kLongest = 1 << 20;
    if (video.width() > kLongest || video.height() > kLongest ||
        (std::max<qint64>(video.width(), 0) + 128) * (std::max<qint64>(video.height(), 0) + 128) >=
            std::numeric_limits<int>::max() / 8)
        draft.problem(fieldPath(kList, index), u"a picture this large can't be encoded"_s);
}

void checkLevel(PlanDraft &draft, qsizetype index, const VideoSettings &video)
{
    const LevelFit fit(video);
    if (!fit.bitRateFits() || fit.sizeFits() == false)
        draft.note(fieldPath(kList, index, "profile"_L1),
                   "the level of "_L1 + video.profile() + " is too low for size, frame rate or bit rate"_L1);
}

void checkRates(PlanDraft &draft, qsizetype index, const VideoSettings &video)
{
    if (!(video.frameRate() > 0 && video.frameRate() <= kHighestRate))
        draft.problem(fieldPath(kList, index, "frameRate"_L1),
                      u"must be above 0 and at most %1"_s.arg(kHighestRate));
    if (video.bitRate() <= 0 || video.bitRate() > kHighestBitRate)
        draft.problem(fieldPath(kList, index, "bitRate"_L1),
                      u"must be above 0 and at most %1 kbit/s"_s.arg(kHighestBitRate));
}

/// The rendition's profile when encoder and container can carry the rendition.
std::optional<NamedProfile> checkedProfile(PlanDraft &draft, qsizetype index, const VideoSettings &video)
{
    const qsizetype known = draft.problems.size();
    if (draft.container && !draft.container->carriesHEVC && video.codec() == VideoCodec::hevc)
        draft.problem(fieldPath(kList, index, "codec"_L1), draft.container->name + " carries no HEVC"_L1);
    checkRates(draft, index, video);
    auto profile = profileOf(video);
    const QString profilePath = fieldPath(kList, index, "profile"_L1);
    if (!profile)
        draft.problem(profilePath, displayName(video.codec()) + " has no profile of this name"_L1);
    else if (!profile->choice)
        draft.problem(profilePath, u"the encoder has no such profile"_s);
    else
        checkSize(draft, index, video, *profile->choice);
    if (draft.problems.size() > known)
        return std::nullopt;
    checkLevel(draft, index, video);
    return profile;
}

void addEncoder(PlanDraft &draft, qsizetype index, const VideoSettings &video, const NamedProfile &profile)
{
    const QString stream = u":v:"_s + QString::number(index);
    // A key frame every two seconds, where segments can begin.
    const QString interval = QString::number(std::max(1L, std::lround(2 * video.frameRate())));
    const QString rate = QString::number(video.bitRate()) + u'k';
    Arguments &out = draft.streams;
    out.add({u"-map"_s, u"[v%1]"_s.arg(index)});
    if (video.codec() == VideoCodec::h264) {
        // Faster choices of libx264 leave out tools of the High profile, and the stream comes out as less.
        out.add({u"-c"_s + stream, u"libx264"_s, u"-preset"_s + stream, u"veryfast"_s});
        if (!profile.level.isEmpty())
            out.add({u"-level"_s + stream, profile.level});
        out.add({u"-sc_threshold"_s + stream, u"0"_s});
    } else {
        out.add({u"-c"_s + stream, u"libx265"_s, u"-preset"_s + stream, u"ultrafast"_s});
        // libx265 does not look at ffmpeg's options for scene cuts and levels; it picks the level itself.
        out.add({u"-x265-params"_s + stream,
                 u"keyint=%1:min-keyint=%1:scenecut=0:open-gop=0:log-level=warning"_s.arg(interval)});
        if (draft.container == &kHlsFragments)
            out.add({u"-tag"_s + stream, u"hvc1"_s}); // the only sample entry that all players take
    }
    if (!profile.choice->name.isEmpty())
        out.add({u"-profile"_s + stream, QString(profile.choice->name)});
    out.add({u"-g"_s + stream, interval, u"-keyint_min"_s + stream, interval, u"-b"_s + stream, rate,
             u"-maxrate"_s + stream, rate, u"-bufsize"_s + stream, rate});
}

QString filterOf(qsizetype index, const QString &source, const VideoSettings &video,
                 const ProfileChoice &choice)
{
    return u"%1fps=%2,scale=%3:%4:force_original_aspect_ratio=decrease:force_divisible_by=2,"
           "pad=%3:%4:-1:-1,setsar=1,format=%5[v%6]"_s.arg(source, rateText(video.frameRate()))
               .arg(video.width())
               .arg(video.height())
               .arg(choice.pixelFormat)
               .arg(index);
}

void addTestPictures(PlanDraft &draft, const VideoSettingsList &renditions)
{
    const auto largest = *std::max_element(renditions.begin(), renditions.end(), [](auto &a, auto &b) {
        return a->width() * a->height() < b->width() * b->height();
    });
    const auto fastest = *std::max_element(renditions.begin(), renditions.end(),
                                           [](auto &a, auto &b) { return a->frameRate() < b->frameRate(); });
    draft.addInput({u"-f"_s, u"lavfi"_s, u"-i"_s,
                    u"testsrc2=size=%1x%2:rate=%3"_s.arg(largest->width())
                        .arg(largest->height())
                        .arg(rateText(fastest->frameRate()))});
}

} // namespace

void planVideo(PlanDraft &draft)
{
    const VideoSettingsList &renditions = draft.preset.videoSettings();
    if (renditions.isEmpty())
        draft.problem(kList, u"there is no video rendition"_s);
    if (draft.container && draft.container->carriesOnePairOnly && renditions.size() > 1)
        draft.problem(fieldPath(kList, 1),
                      u"%1 carries one video stream, this preset has %2"_s.arg(draft.container->name)
                          .arg(renditions.size()));
    QString split;
    for (qsizetype i = 0; i < renditions.size(); ++i) {
        const VideoSettings &video = *renditions[i];
        const auto profile = checkedProfile(draft, i, video);
        if (!profile)
            continue;
        const QString source = renditions.size() == 1 ? u"[0:v:0]"_s : u"[p%1]"_s.arg(i);
        split += source;
        draft.filters.append(filterOf(i, source, video, *profile->choice));
        addEncoder(draft, i, video, *profile);
    }
    if (!draft.problems.isEmpty())
        return;
    if (renditions.size() > 1)
        draft.filters.prepend(u"[0:v:0]split=%1%2"_s.arg(renditions.size()).arg(split));
    if (draft.request.input().isEmpty())
        addTestPictures(draft, renditions);
}

} // namespace vantle::encoder
