// SPDX-License-Identifier: MIT
#include "apps/vantlectl/LevelFit.h"

#include <algorithm>

namespace vantle::ctl {
namespace {

const QString kAutomatic = QStringLiteral("automatic");

void judgeH264(const VideoSettings &video, LevelFit &fit)
{
    const auto &offered = video.availableH264Profiles();
    const auto named = std::find_if(offered.begin(), offered.end(), [&](const H264Profile &profile) {
        return profile.displayName() == video.profile();
    });
    fit.isKnownProfile = named != offered.end();
    if (!fit.isKnownProfile || !H264Profile::isComputable(video.width(), video.height(), video.frameRate()))
        return;

    const auto suitsSize = [&](const H264Profile &profile) {
        return profile.isCompatible(video.width(), video.height(), video.frameRate());
    };
    fit.sizeFits = suitsSize(*named);
    for (const H264Profile &profile : offered) {
        if (profile.profile == named->profile && profile.maxBitRate() >= video.bitRate() &&
            suitsSize(profile)) {
            fit.lowestLevel = levelText(profile.level);
            return;
        }
    }
}

void judgeHEVC(const VideoSettings &video, LevelFit &fit)
{
    fit.isKnownProfile =
        video.hevcProfileLevels(video.resolution(), video.frameRate()).contains(video.profile());
    if (!fit.isKnownProfile)
        return;
    fit.sizeFits = true;
    if (fit.bitRateFits)
        fit.lowestLevel = kAutomatic;
}

} // namespace

QString levelText(H264ProfileLevel level)
{
    if (level == H264ProfileLevel::_AutoLevel)
        return kAutomatic;
    return QString(h264ProfileLevels().text(level)).sliced(1).replace(u'_', u'.');
}

LevelFit levelFitOf(const VideoSettings &video)
{
    LevelFit fit;
    fit.maxBitRate = video.maxBitRate();
    fit.bitRateFits = video.bitRate() <= fit.maxBitRate;
    if (video.codec() == VideoCodec::h264)
        judgeH264(video, fit);
    else
        judgeHEVC(video, fit);
    return fit;
}

} // namespace vantle::ctl
