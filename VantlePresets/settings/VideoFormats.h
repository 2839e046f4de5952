// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/core/EnumerationTable.h"
#include "VantlePresets/core/Enumerations.h"

namespace vantle {

/// "H.264", "HEVC": shown to users and kept in preset files.
[[nodiscard]] VANTLE_PRESETS_EXPORT const EnumerationTable<VideoCodec> &videoCodecs();
/// "custom", "416 x 234", ...: shown to users and kept in preset files.
[[nodiscard]] VANTLE_PRESETS_EXPORT const EnumerationTable<VideoResolution> &videoResolutions();

/// The display string; a value outside the enumeration stops the process.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString displayName(VideoCodec codec);
[[nodiscard]] VANTLE_PRESETS_EXPORT QString displayValue(VideoResolution resolution);

/// The name of the platform's codec type constant: "AVVideoCodecTypeH264" or "AVVideoCodecTypeHEVC".
[[nodiscard]] VANTLE_PRESETS_EXPORT QString videoCodecType(VideoCodec codec);

} // namespace vantle
