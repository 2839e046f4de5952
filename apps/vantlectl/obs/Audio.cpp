// SPDX-License-Identifier: MIT
#include "apps/vantlectl/obs/PlanDraft.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace vantle::ctl::obs {

using namespace Qt::StringLiterals;

namespace {

constexpr auto kFirst = "audioSettings.0"_L1;

struct ChannelSetup
{
    qsizetype channels;
    QLatin1StringView name;
};

constexpr std::array<ChannelSetup, 7> kSetups{{{1, "Mono"_L1},
                                               {2, "Stereo"_L1},
                                               {3, "2.1"_L1},
                                               {4, "4.0"_L1},
                                               {5, "4.1"_L1},
                                               {6, "5.1"_L1},
                                               {8, "7.1"_L1}}};

// OBS takes the next higher of these steps, in kbit/s.
constexpr qint64 kLowestBitRate = 64;
constexpr qint64 kHighestBitRate = 1024;
constexpr qint64 kBitRateStep = 32;

QString field(QLatin1StringView name)
{
    return kFirst + u'.' + name;
}

void planBitRate(PlanDraft &draft, const AudioSettings &track)
{
    // A frame of 1024 samples takes at most 6144 bits per channel; the encoder silently keeps to that.
    const qint64 frames =
        track.inputChannels().size() * std::clamp<qint64>(track.sampleRate(), 0, 96000) * 6144 / 1024 / 1000;
    const qint64 highest = std::clamp(frames / kBitRateStep * kBitRateStep, kLowestBitRate, kHighestBitRate);
    const qint64 steps = std::clamp<qint64>(track.bitRate(), 0, highest) + kBitRateStep - 1;
    const qint64 taken = std::clamp(steps / kBitRateStep * kBitRateStep, kLowestBitRate, highest);
    if (taken != track.bitRate())
        draft.differ(field("bitRate"_L1),
                     u"OBS would send %1 kbit/s instead of %2"_s.arg(taken).arg(track.bitRate()));
    draft.set(u"SimpleOutput"_s, u"ABitrate"_s, QString::number(taken));
}

/// What OBS can be told stays apart from what it runs with: it takes these two values when it starts.
void planFormat(PlanDraft &draft, const AudioSettings &track)
{
    const AudioFormat &running = draft.host.audio;
    AudioFormat &wanted = draft.plan.audio;
    wanted = running;
    const auto differ = [&](QLatin1StringView name, bool canBeTold, const QString &value,
                            const QString &present) {
        draft.plan.needsRestart = draft.plan.needsRestart || canBeTold;
        draft.differ(field(name),
                     canBeTold
                         ? u"OBS mixes to %1 and takes %2 when it is started again only"_s.arg(present, value)
                         : u"OBS has no %1, it would send %2"_s.arg(value, present));
    };
    if (const qint64 rate = track.sampleRate(); rate != running.sampleRate) {
        const bool canBeTold = rate == 44100 || rate == 48000;
        if (canBeTold)
            wanted.sampleRate = rate;
        differ("sampleRate"_L1, canBeTold, u"%1 Hz"_s.arg(rate), u"%1 Hz"_s.arg(running.sampleRate));
    }
    const qsizetype channels = track.inputChannels().size();
    const auto setup = std::find_if(kSetups.begin(), kSetups.end(),
                                    [&](const ChannelSetup &row) { return row.channels == channels; });
    const bool canBeTold = setup != kSetups.end();
    if (canBeTold)
        wanted.channelSetup = setup->name;
    if (!canBeTold || wanted.channelSetup != running.channelSetup)
        differ("inputChannels"_L1, canBeTold,
               canBeTold ? QString(setup->name) : u"mix of %1 channels"_s.arg(channels),
               running.channelSetup);
}

void addNotes(PlanDraft &draft, const AudioSettings &track)
{
    QList<qint64> first(track.inputChannels().size());
    std::iota(first.begin(), first.end(), 0);
    if (track.inputChannels() != first)
        draft.note(field("inputChannels"_L1), u"OBS's mixer says which channels are heard"_s);
    draft.note(u"language, trackName, bitsPerSample, pid"_s, u"OBS's streams keep none of them"_s);
}

} // namespace

void planAudio(PlanDraft &draft)
{
    const AudioSettingsList &tracks = draft.preset.audioSettings();
    draft.plan.audio = draft.host.audio;
    if (tracks.isEmpty()) {
        draft.differ(u"audioSettings"_s, u"OBS always sends a track"_s);
        return;
    }
    planBitRate(draft, *tracks.first());
    planFormat(draft, *tracks.first());
    addNotes(draft, *tracks.first());
    for (qsizetype i = 1; i < tracks.size(); ++i)
        draft.differ(u"audioSettings.%1"_s.arg(i), u"OBS sends one track, the first"_s);
}

} // namespace vantle::ctl::obs
