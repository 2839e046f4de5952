// SPDX-License-Identifier: MIT
#include "VantlePresets/advice/ServiceRules.h"

#include "VantlePresets/advice/Sources.h"
#include "VantlePresets/model/ServiceIngest.h"
#include "VantlePresets/model/StreamAddress.h"

#include <algorithm>
#include <array>

namespace vantle::advice {
namespace {

using namespace Qt::StringLiterals;

// The smallest rows stand for all sizes below them.
constexpr std::array<BitRateRow, 8> kYouTubeRates{{{2160, true, 35000, 10000, 40000, source::kYouTubeHelp},
                                                   {2160, false, 30000, 8000, 35000, source::kYouTubeHelp},
                                                   {1440, true, 24000, 6000, 30000, source::kYouTubeHelp},
                                                   {1440, false, 15000, 5000, 25000, source::kYouTubeHelp},
                                                   {1080, true, 12000, 4000, 10000, source::kYouTubeHelp},
                                                   {1080, false, 10000, 3000, 8000, source::kYouTubeHelp},
                                                   {720, true, 6000, 3000, 8000, source::kYouTubeHelp},
                                                   {720, false, 4000, 3000, 8000, source::kYouTubeHelp}}};

// Of 480p and 360p at 60 frames per second the service itself says nothing; OBS has upper limits.
constexpr std::array<BitRateRow, 8> kFacebookRates{{{1080, true, 0, 4500, 9000, source::kFacebookReference},
                                                    {1080, false, 0, 3000, 6000, source::kFacebookReference},
                                                    {720, true, 0, 2250, 6000, source::kFacebookReference},
                                                    {720, false, 0, 1500, 4000, source::kFacebookReference},
                                                    {480, true, 0, 600, 3000, source::kObs},
                                                    {480, false, 0, 600, 2000, source::kFacebookReference},
                                                    {360, true, 0, 400, 1500, source::kObs},
                                                    {360, false, 0, 400, 1000, source::kFacebookReference}}};

constexpr std::array<qint64, 2> kSampleRates{44100, 48000};
constexpr std::array<qsizetype, 3> kYouTubeChannels{1, 2, 6};
constexpr std::array<qsizetype, 1> kFacebookChannels{2};

constexpr std::array<ServiceRules, 2> kServices{
    {{StreamingType::youTube, "YouTube"_L1, "youtube.com"_L1, false, source::kYouTubeRtmps, 60,
      source::kYouTubeHelp, true, source::kFfmpegChanges, kYouTubeRates, source::kYouTubeHealth, kSampleRates,
      kYouTubeChannels, "mono, stereo or 5.1"_L1, source::kYouTube51, 160, source::kObs, false},
     {StreamingType::facebook, "Facebook"_L1, "facebook.com"_L1, true, source::kFacebookOverview, 60,
      source::kFacebookReference, false, source::kFacebookReference, kFacebookRates,
      source::kFacebookReference, kSampleRates, kFacebookChannels, "stereo"_L1, source::kFacebookReference,
      256, source::kFacebookReference, true}}};

constexpr double kSlowest = 30;

const ServiceRules *rulesOf(StreamingType type)
{
    const auto *const found = std::find_if(kServices.begin(), kServices.end(),
                                           [&](const ServiceRules &rules) { return rules.type == type; });
    return found == kServices.end() ? nullptr : found;
}

} // namespace

const ServiceRules *rulesFor(const VantlePreset &preset)
{
    const ServiceRules *own = rulesOf(preset.type());
    const auto *push = dynamic_cast<const RTMPVantlePreset *>(&preset);
    if (own || !push)
        return own;
    const auto address = StreamAddress::parse(push->streamingURL());
    const ServiceIngest *named = address ? ingestOfHost(address->host) : nullptr;
    return named ? rulesOf(named->type) : nullptr;
}

const BitRateRow *rowOf(const ServiceRules &rules, qint64 width, qint64 height, double frameRate)
{
    const qint64 side = std::min(width, height);
    const BitRateRow *found = nullptr;
    for (const BitRateRow &row : rules.bitRates) {
        if (row.isFast == (frameRate > kSlowest) && row.side >= side)
            found = &row;
    }
    return found;
}

} // namespace vantle::advice
