// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"

#include <QtCore/QObject>

namespace vantle {

// Here together, since a namespace has one meta-object: it is what lets hosts that know texts and numbers
// only read and set properties of these types.
Q_NAMESPACE_EXPORT(VANTLE_PRESETS_EXPORT)

/// The kind of a preset.
enum class StreamingType : int { hls = 1, youTube = 2, rtmp = 3, wowza = 4, facebook = 5, srt = 6 };
Q_ENUM_NS(StreamingType)

/// How a rendition is encoded.
enum class VideoCodec : int { h264 = 1, hevc = 2 };
Q_ENUM_NS(VideoCodec)

// NOLINTBEGIN(bugprone-reserved-identifier): the size names are those that hosts know.
/// Frame sizes in pixels; the display string is the single source of width and height.
enum class VideoResolution : int {
    _custom = -1,
    _416_234 = 0,
    _640_360,
    _768_432,
    _960_540,
    _1280_720,
    _1920_1080,
    _2560_1440,
    _3840_2160,
};
// NOLINTEND(bugprone-reserved-identifier)
Q_ENUM_NS(VideoResolution)

/// How a track is encoded.
enum class AudioCodecID : int { aacLC = 0 };
Q_ENUM_NS(AudioCodecID)

} // namespace vantle
