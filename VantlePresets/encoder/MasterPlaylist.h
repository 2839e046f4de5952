// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/encoder/EncoderPlan.h"

namespace vantle {

/// Completes the master playlist that the encoder has written to an HLS stream's folder with what it leaves
/// out: names of tracks, AVERAGE-BANDWIDTH, FRAME-RATE, AUTOSELECT, CHANNELS and one default track. To be
/// called every second or so while the encoder runs, and at its end, in the folder that it was started in,
/// with what planEncoder() was given and gave; readers find the file whole at any time. Lines that are not
/// understood stay.
///
/// True when something was completed; false when nothing is there yet, nothing is left to do, or the plan has
/// no such file. Throws std::system_error when the file can't be read or replaced. On the thread that the
/// preset belongs to.
VANTLE_PRESETS_EXPORT bool completeMasterPlaylist(const VantlePreset &preset, const EncoderPlan &plan);

} // namespace vantle
