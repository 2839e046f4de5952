// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/model/VantlePreset.h"

#include <QtCore/QByteArray>

namespace vantle {

/// The master playlist of an HLS folder with what the encoder does not write: names of tracks,
/// AVERAGE-BANDWIDTH, FRAME-RATE, AUTOSELECT, CHANNELS, and one default track. `written` is what the encoder
/// wrote for the preset's plan (EncoderPlan::masterPlaylist()); a playlist that is complete comes back as it
/// is, and lines that are not understood stay. On the thread that the preset belongs to.
[[nodiscard]] VANTLE_PRESETS_EXPORT QByteArray completeMasterPlaylist(const VantlePreset &preset,
                                                                      const QByteArray &written);

} // namespace vantle
