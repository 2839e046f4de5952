// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QString>

namespace vantle::encoder {

/// What a container, as ffmpeg 5.1 writes it, can carry.
struct Container
{
    QLatin1StringView name;
    bool carriesOnePairOnly; ///< one video and one audio stream
    bool carriesHEVC;
    bool carriesIdentifiers;
    bool mixesStreams; ///< all streams share one file, so that packet identifiers must differ
    bool carriesLanguages;
    bool marksDefault;
};

inline constexpr Container kHlsSegments{QLatin1StringView("HLS"), false, true, true, false, true, true};
/// Players take HEVC from HLS in fragmented MP4 only.
inline constexpr Container kHlsFragments{
    QLatin1StringView("HLS with MP4 fragments"), false, true, false, false, true, true};
inline constexpr Container kFlv{QLatin1StringView("FLV"), true, false, false, true, false, false};
inline constexpr Container kRtsp{QLatin1StringView("RTSP"), false, true, false, true, false, false};
inline constexpr Container kTransportStream{
    QLatin1StringView("MPEG-TS"), false, true, true, true, true, false};

} // namespace vantle::encoder
