// SPDX-License-Identifier: MIT
#include "VantlePresets/model/ServiceIngest.h"

#include <algorithm>
#include <array>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using Protocol = RTMPVantlePreset::StreamingProtocol;

constexpr std::array<ServiceIngest, 6> kIngests{
    {{StreamingType::youTube, "a.rtmp.youtube.com"_L1, Protocol::rtmp, 1935, "live2"_L1, false, true,
      "OBS"_L1},
     {StreamingType::youTube, "a.rtmps.youtube.com"_L1, Protocol::rtmps, 443, "live2"_L1, false, true,
      "Y-rtmps"_L1},
     {StreamingType::youTube, "b.rtmps.youtube.com"_L1, Protocol::rtmps, 443, "live2?backup=1"_L1, true, true,
      "Y-rtmps"_L1},
     {StreamingType::youTube, "b.rtmp.youtube.com"_L1, Protocol::rtmp, 1935, "live2?backup=1"_L1, true, true,
      "OBS"_L1},
     {StreamingType::facebook, "live-api-s.facebook.com"_L1, Protocol::rtmps, 443, "rtmp"_L1, false, true,
      "F-over"_L1},
     // Handed out until about 2018; whether it still answers is told both ways.
     {StreamingType::facebook, "rtmp-api.facebook.com"_L1, Protocol::rtmps, 443, "rtmp"_L1, false, false,
      "OBS"_L1}}};

template <class Condition>
const ServiceIngest *firstRow(Condition condition)
{
    const auto *const found = std::find_if(kIngests.begin(), kIngests.end(), condition);
    return found == kIngests.end() ? nullptr : found;
}

} // namespace

std::span<const ServiceIngest> serviceIngests()
{
    return kIngests;
}

const ServiceIngest *firstIngestOf(StreamingType type)
{
    return firstRow([&](const ServiceIngest &ingest) { return ingest.type == type; });
}

const ServiceIngest *ingestOfHost(const QString &host)
{
    return firstRow(
        [&](const ServiceIngest &ingest) { return host.compare(ingest.host, Qt::CaseInsensitive) == 0; });
}

const ServiceIngest *ingestFor(StreamingType type, Protocol protocol, bool isBackup)
{
    return firstRow([&](const ServiceIngest &ingest) {
        return ingest.type == type && ingest.protocol == protocol && ingest.isBackup == isBackup;
    });
}

const ServiceIngest *bestIngestOf(StreamingType type, bool isBackup)
{
    const ServiceIngest *const backup = isBackup ? ingestFor(type, Protocol::rtmps, true) : nullptr;
    return backup ? backup : ingestFor(type, Protocol::rtmps, false);
}

} // namespace vantle
