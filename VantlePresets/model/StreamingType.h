// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/core/EnumerationTable.h"
#include "VantlePresets/core/Enumerations.h"

namespace vantle {

/// The six kinds in order, with their labels: shown to users, kept in preset files, names of the icons.
[[nodiscard]] VANTLE_PRESETS_EXPORT const EnumerationTable<StreamingType> &streamingTypes();

/// The label; a value outside the enumeration stops the process.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString displayName(StreamingType type);

} // namespace vantle
