// SPDX-License-Identifier: MIT
#include "VantlePresets/advice/AdviceList.h"
#include "VantlePresets/advice/Sources.h"

#include <QtCore/QHash>

#include <algorithm>
#include <array>
#include <limits>

namespace vantle::advice {
namespace {

using namespace Qt::StringLiterals;

struct IdentifierRule
{
    qint64 first;
    qint64 last;
    AdviceSeverity severity;
    QLatin1StringView text;
    QLatin1StringView source;
};

constexpr qint64 kAny = std::numeric_limits<qint64>::max();

constexpr std::array<IdentifierRule, 6> kIdentifiers{
    {{-kAny - 1, 15, AdviceSeverity::error, "0 to 15 belong to the transport stream; free are 32 to 8186"_L1,
      source::kTransportStream},
     {16, 31, AdviceSeverity::error, "16 to 31 belong to DVB's tables; free are 32 to 8186"_L1,
      source::kTransportStream},
     {4096, 4096, AdviceSeverity::warning, "4096 is where ffmpeg puts the program map; take another"_L1,
      source::kFfmpegManual},
     {8187, 8187, AdviceSeverity::warning, "8187 belongs to ATSC's tables; free are 32 to 8186"_L1,
      source::kTransportStream},
     {8188, 8190, AdviceSeverity::warning, "8188 to 8190 are unusual; free are 32 to 8186"_L1,
      source::kTransportStream},
     {8191, kAny, AdviceSeverity::error, "identifiers end at 8190; free are 32 to 8186"_L1,
      source::kTransportStream}}};

} // namespace

void adviseIdentifiers(AdviceList &advice, const VantlePreset &preset)
{
    const VideoSettingsList &renditions = preset.videoSettings();
    // HLS with HEVC has MP4 fragments, which have no such identifiers.
    const bool isFragmented = std::any_of(renditions.begin(), renditions.end(), [](const auto &video) {
        return video->codec() == VideoCodec::hevc;
    });
    const bool isOneStream = preset.type() == StreamingType::srt; // HLS has a file for each
    if (!isOneStream && (preset.type() != StreamingType::hls || isFragmented))
        return;
    QHash<qint64, QString> owners;
    const auto adviseOne = [&](const QString &owner, qint64 value) {
        const QString place = owner + ".pid"_L1;
        for (const IdentifierRule &rule : kIdentifiers) {
            if (value >= rule.first && value <= rule.last)
                advice.add(rule.severity, place, rule.text, rule.source);
        }
        if (isOneStream && owners.contains(value))
            advice.error(place, owners[value] + " has the same identifier; each stream takes its own"_L1,
                         source::kTransportStream);
        owners.insert(value, owner);
    };
    for (qsizetype i = 0; i < renditions.size(); ++i)
        adviseOne(placeOf("videoSettings"_L1, i), renditions[i]->pid());
    for (qsizetype i = 0; i < preset.audioSettings().size(); ++i)
        adviseOne(placeOf("audioSettings"_L1, i), preset.audioSettings()[i]->pid());
}

} // namespace vantle::advice
