// SPDX-License-Identifier: MIT
#include "VantlePresets/settings/VideoSettings.h"

#include "VantlePresets/core/ObjectId.h"
#include "VantlePresets/document/DocumentReader.h"
#include "VantlePresets/document/DocumentWriter.h"

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

} // namespace

VideoSettings::VideoSettings(Key) : m_id(newObjectId()) {}

std::shared_ptr<VideoSettings> VideoSettings::create()
{
    return std::make_shared<VideoSettings>(Key{});
}

std::shared_ptr<VideoSettings> VideoSettings::decode(const document::ObjectReader &object)
{
    auto settings = create();
    const QUtf8StringView codec = object.text("codec");
    if (const auto known = videoCodecs().fromText(codec))
        settings->m_codec = *known;
    else
        object.fail("codec", "Invalid VideoCodec display string: "_L1 + codec.toString());
    const QUtf8StringView resolution = object.text("resolution");
    if (const auto known = videoResolutions().fromText(resolution))
        settings->m_resolution = *known;
    else
        object.fail("resolution", "Invalid Resolution display string: "_L1 + resolution.toString());
    settings->m_customWidth = object.integer("customWidth");
    settings->m_customHeight = object.integer("customHeight");
    settings->m_frameRate = object.number("frameRate");
    settings->m_bitRate = object.integer("bitRate");
    settings->m_profile = object.string("profile");
    settings->m_pid = object.optionalInteger("pid").value_or(256);
    return settings;
}

void VideoSettings::encode(document::DocumentWriter &writer) const
{
    writer.beginObject();
    writer.string("codec", videoCodecs().text(m_codec));
    writer.string("resolution", videoResolutions().text(m_resolution));
    writer.integer("customWidth", m_customWidth);
    writer.integer("customHeight", m_customHeight);
    writer.number("frameRate", m_frameRate);
    writer.integer("bitRate", m_bitRate);
    writer.string("profile", m_profile);
    writer.integer("pid", m_pid);
    writer.endObject();
}

QList<double> VideoSettings::availableFrameRates()
{
    return {23.976, 24.0, 25.0, 29.97, 30.0, 50.0, 59.94, 60.0};
}

void VideoSettings::setCodec(VideoCodec codec)
{
    assign(m_codec, codec, &VideoSettings::codecChanged);
}

void VideoSettings::setResolution(VideoResolution resolution)
{
    assign(m_resolution, resolution, &VideoSettings::resolutionChanged);
    if (m_resolution != VideoResolution::_custom) {
        setCustomWidth(0);
        setCustomHeight(0);
    }
}

void VideoSettings::setCustomWidth(qint64 width)
{
    assign(m_customWidth, width, &VideoSettings::customWidthChanged);
}

void VideoSettings::setCustomHeight(qint64 height)
{
    assign(m_customHeight, height, &VideoSettings::customHeightChanged);
}

void VideoSettings::setFrameRate(double frameRate)
{
    assign(m_frameRate, frameRate, &VideoSettings::frameRateChanged);
}

void VideoSettings::setBitRate(qint64 bitRate)
{
    assign(m_bitRate, bitRate, &VideoSettings::bitRateChanged);
    if (m_bitRate < 0)
        setBitRate(0);
    else if (const qint64 maximum = maxBitRate(); maximum < m_bitRate)
        setBitRate(maximum);
}

void VideoSettings::setProfile(const QString &profile)
{
    assign(m_profile, profile, &VideoSettings::profileChanged);
}

void VideoSettings::setPid(qint64 pid)
{
    assign(m_pid, pid, &VideoSettings::pidChanged);
}

qint64 VideoSettings::width() const
{
    return m_resolution == VideoResolution::_custom ? m_customWidth : sizePiece(m_resolution, 0);
}

qint64 VideoSettings::height() const
{
    return m_resolution == VideoResolution::_custom ? m_customHeight : sizePiece(m_resolution, 1);
}

QString VideoSettings::videoToolboxProfile() const
{
    switch (m_codec) {
    case VideoCodec::h264:
        if (const auto *profile = findProfile(m_availableH264Profiles, m_profile))
            return profile->videoToolboxProfile();
        return H264Profile{H264ProfileType::main, H264ProfileLevel::_AutoLevel}.videoToolboxProfile();
    case VideoCodec::hevc:
        if (const auto *profile = findProfile(m_availableHEVCProfiles, m_profile))
            return profile->videoToolboxProfile();
        return HEVCProfile{HEVCProfileType::main, HEVCProfileLevel::_AutoLevel}.videoToolboxProfile();
    }
    programmingFault("unexpected VideoCodec value");
}

QString VideoSettings::variantName() const
{
    return withoutBlanksAndDots(vantle::displayName(m_codec) + u'_' + QString::number(width()) + u'x' +
                                QString::number(height()) + u'_' + QString::number(m_bitRate));
}

QString VideoSettings::displayName() const
{
    return "Video Variant: "_L1 + vantle::displayName(m_codec) + u' ' + displayValue(m_resolution) +
           " @ "_L1 + decimalText(m_frameRate);
}

QString VideoSettings::aggregateDescription() const
{
    // The first word is the enumeration's name, not the codec's, and one parenthesis stays open: observers
    // know the text in this form.
    return "VideoCodec ("_L1 + displayValue(m_resolution) + " @ "_L1 + decimalText(m_frameRate) + " ("_L1 +
           m_profile + u')';
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
    for (const H264Profile &profile : m_availableH264Profiles) {
        if (profile.isCompatible(width(), height(), frameRate))
            names.append(profile.displayName());
    }
    return names;
}

QStringList VideoSettings::hevcProfileLevels(VideoResolution, double) const
{
    QStringList names;
    for (const HEVCProfile &profile : m_availableHEVCProfiles)
        names.append(profile.displayName());
    return names;
}

qint64 VideoSettings::maximumBitRate(VideoCodec codec, const QString &profile, VideoResolution, double) const
{
    switch (codec) {
    case VideoCodec::h264: {
        const auto *found = findProfile(m_availableH264Profiles, profile);
        return found ? found->maxBitRate() : 0;
    }
    case VideoCodec::hevc: {
        const auto *found = findProfile(m_availableHEVCProfiles, profile);
        return found ? found->maxBitRate() : 0;
    }
    }
    programmingFault("unexpected VideoCodec value");
}

qint64 VideoSettings::maxBitRate() const
{
    return maximumBitRate(m_codec, m_profile, m_resolution, m_frameRate);
}

void VideoSettings::update(const VideoSettings &other)
{
    setCodec(other.m_codec);
    setResolution(other.m_resolution);
    setCustomWidth(other.m_customWidth);
    setCustomHeight(other.m_customHeight);
    setFrameRate(other.m_frameRate);
    setBitRate(other.m_bitRate);
    setProfile(other.m_profile);
    setPid(other.m_pid);
}

bool operator==(const VideoSettings &a, const VideoSettings &b)
{
    return a.m_codec == b.m_codec && a.m_resolution == b.m_resolution && a.m_frameRate == b.m_frameRate &&
           a.m_profile == b.m_profile;
}

} // namespace vantle
