// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/model/VantlePreset.h"

namespace vantle {

/// Gives a YouTube or Facebook preset what its service needs: RTMPS and its port. Host and application too,
/// but only where they are empty or the service's own, so that the preset of a relay keeps them; a preset
/// marked as backup gets the backup host. What else the address says (a path, a login) stays.
/// False, without a change, for the other kinds, which belong to no service. Main thread only.
VANTLE_PRESETS_EXPORT bool setServiceConnection(VantlePreset &preset);

} // namespace vantle
