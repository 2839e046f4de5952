// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/settings/VideoSettings.h"

#include <optional>

namespace vantle::ctl {

/// Whether a rendition keeps within the limits of the profile that it names.
struct LevelFit
{
    bool isKnownProfile = false; ///< the profile is one that the codec offers
    qint64 maxBitRate = 0;       ///< in kbit/s; 0 for a profile that is not known
    bool bitRateFits = false;
    /// Nothing when it can't be told: no such profile, or a size and rate too large to count.
    std::optional<bool> sizeFits;
    /// The lowest level of the profile's own type that suits size, rate and bit rate: "3.1" or
    /// "automatic"; nothing when none does or it can't be told. HEVC has the automatic level only.
    std::optional<QString> lowestLevel;
};

/// "_3_1" as people write it: "3.1"; "automatic" for the automatic level.
[[nodiscard]] QString levelText(H264ProfileLevel level);

[[nodiscard]] LevelFit levelFitOf(const VideoSettings &video);

} // namespace vantle::ctl
