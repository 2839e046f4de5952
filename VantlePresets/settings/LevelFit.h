// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/settings/VideoSettings.h"

#include <memory>
#include <optional>

namespace vantle {

/// Whether a rendition keeps within the limits of the profile that it names (ITU-T H.264, Table A-1; see
/// H264Profile). Asks first what can be computed, so that no rendition ends the process. A small value that
/// does not follow later changes of the rendition. On the rendition's thread.
class VANTLE_PRESETS_EXPORT LevelFit
{
public:
    /// Judges the rendition as it is.
    explicit LevelFit(const VideoSettings &video);

    /// Whether the profile is one that the codec offers.
    [[nodiscard]] bool isKnownProfile() const;
    /// In kbit/s; 0 for a profile that is not known.
    [[nodiscard]] qint64 maxBitRate() const;
    /// Whether the bit rate is not above maxBitRate().
    [[nodiscard]] bool bitRateFits() const;
    /// Whether frame size and rate fit; nothing when it can't be told: no such profile, or a size and rate
    /// too large to count.
    [[nodiscard]] std::optional<bool> sizeFits() const;
    /// The lowest level of the profile's own type that suits size, rate and bit rate: "3.1" or "automatic";
    /// nothing when none does or it can't be told. HEVC has the automatic level only.
    [[nodiscard]] std::optional<QString> lowestLevel() const;

private:
    struct Q_DECL_HIDDEN Data;
    std::shared_ptr<const Data> d;
};

/// "_3_1" as people write it: "3.1"; "automatic" for the automatic level.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString levelText(H264ProfileLevel level);

} // namespace vantle
