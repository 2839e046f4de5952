// SPDX-License-Identifier: MIT
#include "VantlePresets/document/RecordTable.h"
#include "VantlePresets/settings/EnumerationFacts.h"
#include "VantlePresets/settings/VideoSettingsPrivate.h"

namespace vantle {
namespace {

using Data = VideoSettingsPrivate;
using Video = VideoSettings;
using Rows = FieldRows<Video, Data>;

constexpr qint64 kLargestSide = 16384;
constexpr qint64 kLargestBitRate = 240000; // MaxBR of level 5.2 of H.264

// Reading and updating go in the order of writing. An update sets the size before the custom sides, which the
// size's setter clears, and the bit rate before the profile, whose limit is that of the profile before.
constexpr RecordTable kFields{std::array{
    Rows::field<&Data::codec, &Video::setCodec>("codec", "Codec").order(1, 1),
    Rows::field<&Data::resolution, &Video::setResolution>("resolution", "Resolution")
        .order(2, 2)
        .means("The frame size in pixels; custom means customWidth and customHeight."),
    Rows::field<&Data::customWidth, &Video::setCustomWidth>("customWidth", "Width")
        .order(3, 3)
        .range(0, kLargestSide)
        .in("pixels"),
    Rows::field<&Data::customHeight, &Video::setCustomHeight>("customHeight", "Height")
        .order(4, 4)
        .range(0, kLargestSide)
        .in("pixels"),
    Rows::field<&Data::frameRate, &Video::setFrameRate>("frameRate", "Frame rate")
        .order(5, 5)
        .in("frames per second"),
    Rows::field<&Data::bitRate, &Video::setBitRate>("bitRate", "Bit rate")
        .order(6, 6)
        .range(0, kLargestBitRate)
        .in("kbit/s"),
    Rows::field<&Data::profile, &Video::setProfile>("profile", "Profile and level")
        .order(7, 7)
        .means("A profile at a level: H264_Main_AutoLevel, H264_High_4_1, HEVC_Main 10_AutoLevel."),
    Rows::field<&Data::pid, &Video::setPid>("pid", "PID")
        .order(8, 8)
        .range(kLeastPid, kGreatestPid)
        .whenAbsent(kPidWhenAbsent)
        .means("The MPEG-TS packet identifier."),
}};

} // namespace

std::shared_ptr<VideoSettings> VideoSettingsPrivate::decode(const document::ObjectReader &object)
{
    auto settings = VideoSettings::create();
    kFields.read(*settings->d, object);
    return settings;
}

void VideoSettingsPrivate::encode(const VideoSettings &settings, document::DocumentWriter &writer)
{
    writer.beginObject();
    kFields.write(*settings.d, writer);
    writer.endObject();
}

void VideoSettingsPrivate::update(VideoSettings &settings, const VideoSettings &other)
{
    kFields.update(settings, *settings.d, *other.d);
}

const QList<Field> &VideoSettings::fields()
{
    static const QList<Field> list = kFields.fields();
    return list;
}

std::shared_ptr<VideoSettings> VideoSettings::decoded(QByteArrayView object)
{
    const document::Document json(object);
    return VideoSettingsPrivate::decode(json.root());
}

QByteArray VideoSettings::encoded(document::Format format) const
{
    return document::encode(
        format, [this](document::DocumentWriter &writer) { VideoSettingsPrivate::encode(*this, writer); });
}

} // namespace vantle
