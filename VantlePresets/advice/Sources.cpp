// SPDX-License-Identifier: MIT
#include "VantlePresets/advice/Sources.h"

#include "VantlePresets/advice/Advice.h"

#include <array>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
namespace source = advice::source;

struct Row
{
    QLatin1StringView key;
    QLatin1StringView where;
};

constexpr std::array<Row, 19> kSources{
    {{source::kAppleHls, "Apple, authoring rules for HLS on its devices, 2025-06-26"_L1},
     {source::kEnhancedRtmp, "github.com/veovera/enhanced-rtmp, version 2, 2026-01-31"_L1},
     {source::kFacebookOverview, "developers.facebook.com/docs/live-video-api/overview"_L1},
     {source::kFacebookReference, "developers.facebook.com/docs/live-video-api/reference"_L1},
     {source::kFfmpegChanges, "ffmpeg's list of changes, 6.1 and 8.0"_L1},
     {source::kFfmpegManual, "ffmpeg-protocols(1), 5.1, and what that version does"_L1},
     {source::kH264, "ITU-T H.264, Table A-1 and clause 7.4.2.1.1"_L1},
     {source::kObs,
      "github.com/obsproject/obs-studio, plugins/rtmp-services/data/services.json, 2026-07-11"_L1},
     {source::kPorts, "RFC 6335, section 6"_L1},
     {source::kHlsFormat, "RFC 8216, section 4.3.4.1"_L1},
     {source::kSrtLive,
      "github.com/Haivision/srt, docs/API/API-socket-options.md and live-streaming.md, 2026-06-08"_L1},
     {source::kSrtOptions, "github.com/Haivision/srt, docs/API/API-socket-options.md, 2026-06-08"_L1},
     {source::kSrtTransmit, "github.com/Haivision/srt, docs/apps/srt-live-transmit.md, 2026-06-08"_L1},
     {source::kTransportStream,
      "ISO/IEC 13818-1, ETSI EN 300 468 and ATSC A/65: reserved packet identifiers"_L1},
     {source::kPresetFile, "docs/preset-file.md"_L1},
     {source::kYouTube51, "support.google.com/youtube/answer/13440750"_L1},
     {source::kYouTubeHealth,
      "developers.google.com/youtube/v3/live/docs/liveStreams/health_status_messages"_L1},
     {source::kYouTubeHelp, "support.google.com/youtube/answer/2853702, copies of 2025 and 2026"_L1},
     {source::kYouTubeRtmps, "developers.google.com/youtube/v3/live/guides/rtmps-ingestion"_L1}}};

} // namespace

QList<AdviceSource> adviceSources()
{
    QList<AdviceSource> sources;
    for (const Row &row : kSources)
        sources.append({row.key, row.where});
    return sources;
}

} // namespace vantle
