// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/settings/VideoSettings.h"

namespace vantle {

namespace document {
class DocumentWriter;
class ObjectReader;
} // namespace document

/// What a VideoSettings holds. The members that files keep have a row in the table of VideoFields.cpp.
class VideoSettingsPrivate
{
public:
    /// Reads one element of "videoSettings"; throws DecodingError.
    [[nodiscard]] static std::shared_ptr<VideoSettings> decode(const document::ObjectReader &object);
    /// Writes one element of "videoSettings"; throws EncodingError.
    static void encode(const VideoSettings &settings, document::DocumentWriter &writer);
    /// Assigns the other's fields with the setters.
    static void update(VideoSettings &settings, const VideoSettings &other);

    VideoCodec codec = VideoCodec::h264;
    VideoResolution resolution = VideoResolution::_1920_1080;
    qint64 customWidth = 0;
    qint64 customHeight = 0;
    double frameRate = 30;
    qint64 bitRate = 4500;
    QString profile = QStringLiteral("H264_Main_AutoLevel");
    qint64 pid = 256;
    QUuid id;
    QList<H264Profile> availableH264Profiles = offeredH264Profiles();
    QList<HEVCProfile> availableHEVCProfiles = offeredHEVCProfiles();
};

} // namespace vantle
