// SPDX-License-Identifier: MIT
#include "VantlePresets/advice/AdviceList.h"
#include "VantlePresets/advice/ServiceRules.h"
#include "VantlePresets/advice/Sources.h"

#include <QtCore/QSet>

#include <algorithm>

namespace vantle::advice {
namespace {

using namespace Qt::StringLiterals;

constexpr auto kList = "audioSettings"_L1;
constexpr qsizetype kStereo = 2;

void adviseTrack(AdviceList &advice, qsizetype index, const AudioSettings &track)
{
    const QList<qint64> &channels = track.inputChannels();
    if (channels.isEmpty())
        advice.error(placeOf(kList, index, "inputChannels"_L1),
                     u"a track takes at least one source channel"_s, source::kPresetFile);
    if (std::any_of(channels.begin(), channels.end(), [](qint64 channel) { return channel < 0; }))
        advice.error(placeOf(kList, index, "inputChannels"_L1), u"source channels are counted from 0"_s,
                     source::kPresetFile);
    if (track.bitRate() <= 0)
        advice.error(placeOf(kList, index, "bitRate"_L1), u"must be above 0 kbit/s"_s, source::kPresetFile);
    if (track.sampleRate() <= 0)
        advice.error(placeOf(kList, index, "sampleRate"_L1), u"must be above 0 Hz"_s, source::kPresetFile);
}

template <class Values, class Value>
bool contains(const Values &values, const Value &value)
{
    return std::find(values.begin(), values.end(), value) != values.end();
}

void adviseForService(AdviceList &advice, const AudioSettingsList &tracks, const ServiceRules &rules)
{
    if (tracks.isEmpty())
        advice.error(kList, rules.name + " takes no stream without sound; add a track"_L1, rules.audioSource);
    if (tracks.size() > 1)
        advice.error(placeOf(kList, 1), rules.name + " takes one audio track"_L1, rules.audioSource);
    for (qsizetype i = 0; i < tracks.size(); ++i) {
        const AudioSettings &track = *tracks[i];
        if (!contains(rules.sampleRates, track.sampleRate()))
            advice.warning(placeOf(kList, i, "sampleRate"_L1), rules.name + " advises 44100 or 48000 Hz"_L1,
                           rules.audioSource);
        const qsizetype channels = track.inputChannels().size();
        if (channels > 0 && !contains(rules.channels, channels))
            advice.warning(placeOf(kList, i, "inputChannels"_L1),
                           "%1 takes %2"_L1.arg(rules.name, rules.channelsText), rules.channelsSource);
        if (channels <= kStereo && track.bitRate() > rules.highestAudioBitRate)
            advice.warning(placeOf(kList, i, "bitRate"_L1),
                           "128 kbit/s is what %1 advises, %2 at most"_L1.arg(
                               rules.name, QString::number(rules.highestAudioBitRate)),
                           rules.audioBitRateSource);
    }
}

void adviseForHls(AdviceList &advice, const AudioSettingsList &tracks)
{
    if (std::none_of(tracks.begin(), tracks.end(),
                     [](const auto &track) { return track->inputChannels().size() == kStereo; }))
        advice.warning(kList, u"one track has to be stereo, on which HLS players count"_s, source::kAppleHls);
    bool hasDefault = false;
    QSet<QString> names;
    for (qsizetype i = 0; i < tracks.size(); ++i) {
        const AudioSettings &track = *tracks[i];
        const bool isStereo = track.inputChannels().size() <= kStereo;
        constexpr qint64 kLowest = 32;
        constexpr qint64 kHighestStereo = 160;
        constexpr qint64 kHighestSurround = 320;
        const qint64 highest = isStereo ? kHighestStereo : kHighestSurround;
        if (track.bitRate() > highest || (track.bitRate() > 0 && track.bitRate() < kLowest))
            advice.warning(placeOf(kList, i, "bitRate"_L1),
                           u"HLS has %1 to %2 kbit/s for %3"_s.arg(kLowest).arg(highest).arg(
                               isStereo ? "stereo"_L1 : "5.1"_L1),
                           source::kAppleHls);
        if (track.isDefault() && hasDefault)
            advice.warning(placeOf(kList, i, "isDefault"_L1), u"one track of a group is the default"_s,
                           source::kHlsFormat);
        hasDefault = hasDefault || track.isDefault();
        if (tracks.size() < 2)
            continue;
        if (track.language().trimmed().isEmpty())
            advice.warning(placeOf(kList, i, "language"_L1), u"tracks to choose from each name a language"_s,
                           source::kAppleHls);
        if (names.contains(track.trackName()))
            advice.warning(placeOf(kList, i, "trackName"_L1),
                           u"tracks to choose from have names of their own"_s, source::kHlsFormat);
        names.insert(track.trackName());
    }
}

void adviseForFlv(AdviceList &advice, const AudioSettingsList &tracks)
{
    if (tracks.size() > 1)
        advice.warning(placeOf(kList, 1),
                       u"RTMP carries one audio track, unless both sides know version 2 of the enhanced "
                       "protocol"_s,
                       source::kEnhancedRtmp);
}

} // namespace

void adviseAudio(AdviceList &advice, const VantlePreset &preset)
{
    const AudioSettingsList &tracks = preset.audioSettings();
    const ServiceRules *rules = rulesFor(preset);
    for (qsizetype i = 0; i < tracks.size(); ++i)
        adviseTrack(advice, i, *tracks[i]);
    if (rules)
        adviseForService(advice, tracks, *rules);
    else if (carriesFlv(preset))
        adviseForFlv(advice, tracks);
    if (preset.type() == StreamingType::hls)
        adviseForHls(advice, tracks);
}

} // namespace vantle::advice
