// SPDX-License-Identifier: MIT
#include "VantlePresets/settings/LevelFit.h"

#include <algorithm>

namespace vantle {

struct LevelFit::Data
{
    bool isKnownProfile = false;
    qint64 maxBitRate = 0;
    bool bitRateFits = false;
    std::optional<bool> sizeFits;
    std::optional<QString> lowestLevel;

    void judgeH264(const VideoSettings &video);
    void judgeHEVC(const VideoSettings &video);
};

void LevelFit::Data::judgeH264(const VideoSettings &video)
{
    const auto &offered = video.availableH264Profiles();
    const auto named = std::find_if(offered.begin(), offered.end(), [&](const H264Profile &profile) {
        return profile.displayName() == video.profile();
    });
    isKnownProfile = named != offered.end();
    if (!isKnownProfile || !H264Profile::isComputable(video.width(), video.height(), video.frameRate()))
        return;

    const auto suitsSize = [&](const H264Profile &profile) {
        return profile.isCompatible(video.width(), video.height(), video.frameRate());
    };
    sizeFits = suitsSize(*named);
    for (const H264Profile &profile : offered) {
        if (profile.profile == named->profile && profile.maxBitRate() >= video.bitRate() &&
            suitsSize(profile)) {
            lowestLevel = levelText(profile.level);
            return;
        }
    }
}

void LevelFit::Data::judgeHEVC(const VideoSettings &video)
{
    isKnownProfile = video.hevcProfileLevels(video.resolution(), video.frameRate()).contains(video.profile());
    if (!isKnownProfile)
        return;
    sizeFits = true;
    if (bitRateFits)
        lowestLevel = levelText(H264ProfileLevel::_AutoLevel);
}

QString levelText(H264ProfileLevel level)
{
    if (level == H264ProfileLevel::_AutoLevel)
        return QStringLiteral("automatic");
    return QString(h264ProfileLevels().text(level)).sliced(1).replace(u'_', u'.');
}

LevelFit::LevelFit(const VideoSettings &video)
{
    const auto data = std::make_shared<Data>();
    data->maxBitRate = video.maxBitRate();
    data->bitRateFits = video.bitRate() <= data->maxBitRate;
    if (video.codec() == VideoCodec::h264)
        data->judgeH264(video);
    else
        data->judgeHEVC(video);
    d = data;
}

bool LevelFit::isKnownProfile() const
{
    return d->isKnownProfile;
}

qint64 LevelFit::maxBitRate() const
{
    return d->maxBitRate;
}

bool LevelFit::bitRateFits() const
{
    return d->bitRateFits;
}

std::optional<bool> LevelFit::sizeFits() const
{
    return d->sizeFits;
}

std::optional<QString> LevelFit::lowestLevel() const
{
    return d->lowestLevel;
}

} // namespace vantle
