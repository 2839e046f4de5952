// SPDX-License-Identifier: MIT
#include "VantlePresets/settings/VideoSettings.h"

#include "VantlePresets/core/ObjectId.h"
#include "VantlePresets/settings/EnumerationFacts.h"
#include "VantlePresets/settings/VideoSettingsPrivate.h"

#include <charconv>
#include <cmath>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

/// The shortest decimal text that reads back as the same value, always with a fraction: "30.0", "29.97".
QString decimalText(double value)
{
    std::array<char, 400> buffer; // the longest double in fixed notation has 309 digits before its point
    const bool isPlain = value == 0 || (std::fabs(value) >= 1e-4 && std::fabs(value) < 1e16);
    const auto format = isPlain ? std::chars_format::fixed : std::chars_format::scientific;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format).ptr;
    QString text = QString::fromLatin1(buffer.data(), end - buffer.data());
    if (isPlain && !text.contains(u'.'))
        text += ".0"_L1;
    return text;
}

/// The piece before or after the " x " of "1920 x 1080", as a number.
qint64 sizePiece(VideoResolution resolution, qsizetype index)
{
    const QStringList pieces = displayValue(resolution).split(" x "_L1);
    return pieces.size() == 2 ? pieces[index].trimmed().toLongLong() : 0;
}

template <class Profile>
const Profile *findProfile(const QList<Profile> &profiles, const QString &displayName)
{
    for (const Profile &profile : profiles) {
        if (profile.displayName() == displayName)
            return &profile;
    }
    return nullptr;
}

QString withoutBlanksAndDots(QString text)
{
    return text.replace(u' ', u'_').replace(u'.', u'_');
}

[[maybe_unused]] const bool kConverted =
    registerConversions<VideoCodec>() && registerConversions<VideoResolution>();

} // namespace

VideoSettings::VideoSettings(Key) : d(std::make_unique<VideoSettingsPrivate>())
{
    d->id = newObjectId();
}

VideoSettings::~VideoSettings() = default;

std::shared_ptr<VideoSettings> VideoSettings::create()
{
    return std::make_shared<VideoSettings>(Key{});
}

QList<double> VideoSettings::availableFrameRates()
{
    return {23.976, 24.0, 25.0, 29.97, 30.0, 50.0, 59.94, 60.0};
}

VideoCodec VideoSettings::codec() const
{
    return d->codec;
}

VideoResolution VideoSettings::resolution() const
{
    return d->resolution;
}

qint64 VideoSettings::customWidth() const
{
    return d->customWidth;
}

qint64 VideoSettings::customHeight() const
{
    return d->customHeight;
}

double VideoSettings::frameRate() const
{
    return d->frameRate;
}

qint64 VideoSettings::bitRate() const
{
    return d->bitRate;
}

const QString &VideoSettings::profile() const
{
    return d->profile;
}

qint64 VideoSettings::pid() const
{
    return d->pid;
}

const QUuid &VideoSettings::id() const
{
    return d->id;
}

const QList<H264Profile> &VideoSettings::availableH264Profiles() const
{
    return d->availableH264Profiles;
}

const QList<HEVCProfile> &VideoSettings::availableHEVCProfiles() const
{
    return d->availableHEVCProfiles;
}

void VideoSettings::setAvailableH264Profiles(const QList<H264Profile> &profiles)
{
    d->availableH264Profiles = profiles;
}

void VideoSettings::setAvailableHEVCProfiles(const QList<HEVCProfile> &profiles)
{
    d->availableHEVCProfiles = profiles;
}

QString VideoSettings::videoCodecType() const
{
    return vantle::videoCodecType(d->codec);
}

void VideoSettings::setCodec(VideoCodec codec)
{
    assign(d->codec, codec, &VideoSettings::codecChanged);
}

void VideoSettings::setResolution(VideoResolution resolution)
{
    assign(d->resolution, resolution, &VideoSettings::resolutionChanged);
    if (d->resolution != VideoResolution::_custom) {
        setCustomWidth(0);
        setCustomHeight(0);
    }
}

void VideoSettings::setCustomWidth(qint64 width)
{
    assign(d->customWidth, width, &VideoSettings::customWidthChanged);
}

void VideoSettings::setCustomHeight(qint64 height)
{
    assign(d->customHeight, height, &VideoSettings::customHeightChanged);
}

void VideoSettings::setFrameRate(double frameRate)
{
    assign(d->frameRate, frameRate, &VideoSettings::frameRateChanged);
}

void VideoSettings::setBitRate(qint64 bitRate)
{
    assign(d->bitRate, bitRate, &VideoSettings::bitRateChanged);
    if (d->bitRate < 0)
        setBitRate(0);
    else if (const qint64 maximum = maxBitRate(); maximum < d->bitRate)
        setBitRate(maximum);
}

void VideoSettings::setProfile(const QString &profile)
{
    assign(d->profile, profile, &VideoSettings::profileChanged);
}

void VideoSettings::setPid(qint64 pid)
{
    assign(d->pid, pid, &VideoSettings::pidChanged);
}

qint64 VideoSettings::width() const
{
    return d->resolution == VideoResolution::_custom ? d->customWidth : sizePiece(d->resolution, 0);
}

qint64 VideoSettings::height() const
{
    return d->resolution == VideoResolution::_custom ? d->customHeight : sizePiece(d->resolution, 1);
}

QString VideoSettings::videoToolboxProfile() const
{
    switch (d->codec) {
    case VideoCodec::h264:
        if (const auto *profile = findProfile(d->availableH264Profiles, d->profile))
            return profile->videoToolboxProfile();
        return H264Profile{H264ProfileType::main, H264ProfileLevel::_AutoLevel}.videoToolboxProfile();
    case VideoCodec::hevc:
        if (const auto *profile = findProfile(d->availableHEVCProfiles, d->profile))
            return profile->videoToolboxProfile();
        return HEVCProfile{HEVCProfileType::main, HEVCProfileLevel::_AutoLevel}.videoToolboxProfile();
    }
    programmingFault("unexpected VideoCodec value");
}

QString VideoSettings::variantName() const
{
    return withoutBlanksAndDots(vantle::displayName(d->codec) + u'_' + QString::number(width()) + u'x' +
                                QString::number(height()) + u'_' + QString::number(d->bitRate));
}

QString VideoSettings::displayName() const
{
    return "Video Variant: "_L1 + vantle::displayName(d->codec) + u' ' + displayValue(d->resolution) +
           " @ "_L1 + decimalText(d->frameRate);
}

QString VideoSettings::aggregateDescription() const
{
    // The first word is the enumeration's name, not the codec's, and one parenthesis stays open: observers
    // know the text in this form.
    return "VideoCodec ("_L1 + displayValue(d->resolution) + " @ "_L1 + decimalText(d->frameRate) + " ("_L1 +
           d->profile + u')';
}

QStringList VideoSettings::profileLevels(VideoCodec codec, VideoResolution resolution, double frameRate) const
{
    switch (codec) {
    case VideoCodec::h264:
        return h264ProfileLevels(resolution, frameRate);
    case VideoCodec::hevc:
        return hevcProfileLevels(resolution, frameRate);
    }
    programmingFault("unexpected VideoCodec value");
}

QStringList VideoSettings::h264ProfileLevels(VideoResolution, double frameRate) const
{
    QStringList names;
    for (const H264Profile &profile : d->availableH264Profiles) {
        if (profile.isCompatible(width(), height(), frameRate))
            names.append(profile.displayName());
    }
    return names;
}

QStringList VideoSettings::hevcProfileLevels(VideoResolution, double) const
{
    QStringList names;
    for (const HEVCProfile &profile : d->availableHEVCProfiles)
        names.append(profile.displayName());
    return names;
}

qint64 VideoSettings::maximumBitRate(VideoCodec codec, const QString &profile, VideoResolution, double) const
{
    switch (codec) {
    case VideoCodec::h264: {
        const auto *found = findProfile(d->availableH264Profiles, profile);
        return found ? found->maxBitRate() : 0;
    }
    case VideoCodec::hevc: {
        const auto *found = findProfile(d->availableHEVCProfiles, profile);
        return found ? found->maxBitRate() : 0;
    }
    }
    programmingFault("unexpected VideoCodec value");
}

qint64 VideoSettings::maxBitRate() const
{
    return maximumBitRate(d->codec, d->profile, d->resolution, d->frameRate);
}

void VideoSettings::update(const VideoSettings &other)
{
    VideoSettingsPrivate::update(*this, other);
}

bool operator==(const VideoSettings &a, const VideoSettings &b)
{
    return a.d->codec == b.d->codec && a.d->resolution == b.d->resolution &&
           a.d->frameRate == b.d->frameRate && a.d->profile == b.d->profile;
}

} // namespace vantle
