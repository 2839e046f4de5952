// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/core/EnumerationTable.h"

namespace vantle {

/// The kind of a preset.
enum class StreamingType : int { hls = 1, youTube = 2, rtmp = 3, wowza = 4, facebook = 5, srt = 6 };

/// The six kinds in order, with their labels: shown to users, kept in preset files, names of the icons.
[[nodiscard]] VANTLE_PRESETS_EXPORT const EnumerationTable<StreamingType, 6> &streamingTypes();

/// The label; a value outside the enumeration stops the process.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString displayName(StreamingType type);

} // namespace vantle
