// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/core/EnumerationTable.h"

#include <QtCore/QHashFunctions>
#include <QtCore/QList>
#include <QtCore/QString>

namespace vantle {

enum class H264ProfileType { baseline, main, high, extended };

// NOLINTBEGIN(bugprone-reserved-identifier): the level names are those that hosts know.
enum class H264ProfileLevel { _3_0, _3_1, _3_2, _4_0, _4_1, _4_2, _5_0, _5_1, _5_2, _AutoLevel };

enum class HEVCProfileType { main, main10, main42210, monochrome, monochrome10 };

enum class HEVCProfileLevel { _AutoLevel };
// NOLINTEND(bugprone-reserved-identifier)

/// The cases in order, with their raw values: the texts that profile names are made of.
[[nodiscard]] VANTLE_PRESETS_EXPORT const EnumerationTable<H264ProfileType> &h264ProfileTypes();
[[nodiscard]] VANTLE_PRESETS_EXPORT const EnumerationTable<H264ProfileLevel> &h264ProfileLevels();
[[nodiscard]] VANTLE_PRESETS_EXPORT const EnumerationTable<HEVCProfileType> &hevcProfileTypes();
[[nodiscard]] VANTLE_PRESETS_EXPORT const EnumerationTable<HEVCProfileLevel> &hevcProfileLevels();

/// An H.264 profile at a level. Limits are those of ITU-T H.264, Table A-1, and depend on the level alone.
struct VANTLE_PRESETS_EXPORT H264Profile
{
    H264ProfileType profile; ///< the profile alone
    H264ProfileLevel level;  ///< the level that limits it

    /// Profile and level.
    friend bool operator==(const H264Profile &, const H264Profile &) = default;
    /// For QHash and QSet.
    friend size_t qHash(const H264Profile &key, size_t seed = 0)
    {
        return qHashMulti(seed, static_cast<int>(key.profile), static_cast<int>(key.level));
    }

    /// "H264_Main_4_1", "H264_High_AutoLevel": the name kept in preset files.
    [[nodiscard]] QString displayName() const;

    /// The table's MaxBR, in kbit/s.
    [[nodiscard]] qint64 maxBitRate() const;

    /// The table's MaxMBPS, in macroblocks per second, for the picture's size too: the check of a single
    /// picture is deliberately lenient.
    [[nodiscard]] qint64 maxMacroBlocksPerFrame() const;
    /// The table's MaxMBPS, in macroblocks per second.
    [[nodiscard]] qint64 maxMacroBlocksPerSecond() const { return maxMacroBlocksPerFrame(); }

    /// Whether pictures of this size (in pixels) and rate (per second) keep within the level; a
    /// picture that is too large does not, whatever the rate. Otherwise a computation that overflows stops
    /// the process; see isComputable().
    [[nodiscard]] bool isCompatible(qint64 width, qint64 height, double frameRate) const;

    /// Whether isCompatible() can compute with these values, whatever the level.
    [[nodiscard]] static bool isComputable(qint64 width, qint64 height, double frameRate);

    /// The name of the VideoToolbox constant, "kVTProfileLevel_H264_Main_4_1".
    [[nodiscard]] QString videoToolboxProfile() const;
};

/// An HEVC profile; the encoder always chooses the level.
struct VANTLE_PRESETS_EXPORT HEVCProfile
{
    HEVCProfileType profile; ///< the profile alone
    HEVCProfileLevel level;  ///< always automatic

    /// Profile and level.
    friend bool operator==(const HEVCProfile &, const HEVCProfile &) = default;
    /// For QHash and QSet.
    friend size_t qHash(const HEVCProfile &key, size_t seed = 0)
    {
        return qHashMulti(seed, static_cast<int>(key.profile), static_cast<int>(key.level));
    }

    /// "HEVC_Main 10_AutoLevel": the name kept in preset files, blanks included.
    [[nodiscard]] QString displayName() const;

    /// In kbit/s; the same for every profile.
    [[nodiscard]] qint64 maxBitRate() const { return 240000; }

    /// The name of the VideoToolbox constant, "kVTProfileLevel_HEVC_Main10_AutoLevel".
    [[nodiscard]] QString videoToolboxProfile() const;
};

/// What a new VideoSettings offers: Baseline, Main and High at all ten levels, Extended at 5.0 and
/// automatic, the two levels for which VideoToolbox has constants. The list is shared, not copied.
[[nodiscard]] VANTLE_PRESETS_EXPORT QList<H264Profile> offeredH264Profiles();
/// The five HEVC profiles.
[[nodiscard]] VANTLE_PRESETS_EXPORT QList<HEVCProfile> offeredHEVCProfiles();

} // namespace vantle
