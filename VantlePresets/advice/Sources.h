// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QLatin1StringView>

/// Keys of adviceSources(). A rule names the one that it was taken from.
namespace vantle::advice::source {

inline constexpr QLatin1StringView kAppleHls{"A"};
inline constexpr QLatin1StringView kEnhancedRtmp{"ER"};
inline constexpr QLatin1StringView kFacebookOverview{"F-over"};
inline constexpr QLatin1StringView kFacebookReference{"F-ref"};
inline constexpr QLatin1StringView kFfmpegChanges{"FF-log"};
inline constexpr QLatin1StringView kFfmpegManual{"FF-man"};
inline constexpr QLatin1StringView kH264{"H.264"};
inline constexpr QLatin1StringView kObs{"OBS"};
inline constexpr QLatin1StringView kPorts{"RFC 6335"};
inline constexpr QLatin1StringView kHlsFormat{"RFC 8216"};
inline constexpr QLatin1StringView kSrtLive{"S-live"};
inline constexpr QLatin1StringView kSrtOptions{"S-opt"};
inline constexpr QLatin1StringView kSrtTransmit{"S-slt"};
inline constexpr QLatin1StringView kTransportStream{"TS"};
inline constexpr QLatin1StringView kPresetFile{"Vantle"};
inline constexpr QLatin1StringView kYouTube51{"Y-51"};
inline constexpr QLatin1StringView kYouTubeHealth{"Y-health"};
inline constexpr QLatin1StringView kYouTubeHelp{"Y-help"};
inline constexpr QLatin1StringView kYouTubeRtmps{"Y-rtmps"};

} // namespace vantle::advice::source
