// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/document/FieldAccess.h"
#include "VantlePresets/settings/AudioSettings.h"
#include "VantlePresets/settings/VideoFormats.h"

namespace vantle {

// The packet identifiers that MPEG-TS leaves to streams and its players find, and the one of files that name
// none.
inline constexpr qint64 kLeastPid = 32;
inline constexpr qint64 kGreatestPid = 8186;
inline constexpr qint64 kPidWhenAbsent = 256;

template <>
struct EnumerationFacts<VideoCodec>
{
    static constexpr QLatin1StringView kName{"VideoCodec"};
    static constexpr std::optional<VideoCodec> kWhenUnknown = std::nullopt;
    static const EnumerationTable<VideoCodec> &table() { return videoCodecs(); }
};

template <>
struct EnumerationFacts<VideoResolution>
{
    static constexpr QLatin1StringView kName{"Resolution"};
    static constexpr std::optional<VideoResolution> kWhenUnknown = std::nullopt;
    static const EnumerationTable<VideoResolution> &table() { return videoResolutions(); }
};

template <>
struct EnumerationFacts<AudioCodecID>
{
    static constexpr QLatin1StringView kName{"AudioCodec"};
    static constexpr std::optional<AudioCodecID> kWhenUnknown = std::nullopt;
    static const EnumerationTable<AudioCodecID> &table() { return audioCodecs(); }
};

} // namespace vantle
