// SPDX-License-Identifier: MIT
#include "VantlePresets/Version.h"

namespace vantle {

int presetsVersion() noexcept
{
    return VANTLE_PRESETS_VERSION;
}

const char *presetsVersionText() noexcept
{
    return VANTLE_PRESETS_VERSION_STR;
}

} // namespace vantle
