// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/core/EnumerationTable.h"

namespace vantle {

enum class VideoCodec : int { h264 = 1, hevc = 2 };

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

/// "H.264", "HEVC": shown to users and kept in preset files.
[[nodiscard]] VANTLE_PRESETS_EXPORT const EnumerationTable<VideoCodec, 2> &videoCodecs();
/// "custom", "416 x 234", ...: shown to users and kept in preset files.
[[nodiscard]] VANTLE_PRESETS_EXPORT const EnumerationTable<VideoResolution, 9> &videoResolutions();

/// The display string; a value outside the enumeration stops the process.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString displayName(VideoCodec codec);
[[nodiscard]] VANTLE_PRESETS_EXPORT QString displayValue(VideoResolution resolution);

/// The name of the platform's codec type constant: "AVVideoCodecTypeH264" or "AVVideoCodecTypeHEVC".
[[nodiscard]] VANTLE_PRESETS_EXPORT QString videoCodecType(VideoCodec codec);

} // namespace vantle
