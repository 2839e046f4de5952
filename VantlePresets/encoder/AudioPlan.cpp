// SPDX-License-Identifier: MIT
#include "VantlePresets/encoder/PlanDraft.h"

#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <array>

namespace vantle::encoder {
namespace {

using namespace Qt::StringLiterals;

constexpr auto kList = "audioSettings"_L1;

struct ChannelLayout
{
    qsizetype channels;
    QLatin1StringView name;
};

// The layouts that the encoder takes, one for each number of channels.
constexpr std::array<ChannelLayout, 9> kLayouts{{{1, "mono"_L1},
                                                 {2, "stereo"_L1},
                                                 {3, "3.0"_L1},
                                                 {4, "4.0"_L1},
                                                 {5, "5.0"_L1},
                                                 {6, "5.1"_L1},
                                                 {7, "6.1"_L1},
                                                 {8, "7.1"_L1},
                                                 {16, "hexadecagonal"_L1}}};

constexpr std::array<qint64, 13> kSampleRates{96000, 88200, 64000, 48000, 44100, 32000, 24000,
                                              22050, 16000, 12000, 11025, 8000,  7350};

constexpr int kTestChannels = 32; // as many as the forms offer

const ChannelLayout *layoutOf(const AudioSettings &track)
{
    const auto found = std::find_if(kLayouts.begin(), kLayouts.end(), [&](const ChannelLayout &layout) {
        return layout.channels == track.inputChannels().size();
    });
    return found == kLayouts.end() ? nullptr : found;
}

/// The ISO 639-2 code that containers keep, "" when there is none: "deu" for "de" and "de-CH".
QString languageCode(const QString &language)
{
    static const QRegularExpression form(u"\\A([A-Za-z]{2,3})(?:[-_].*)?\\z"_s);
    QString code = form.match(language).captured(1).toLower();
    if (code.size() == 3)
        return code;
    return QLocale::languageToCode(QLocale::codeToLanguage(code, QLocale::ISO639Part1),
                                   QLocale::ISO639Part2T);
}

void checkChannels(PlanDraft &draft, qsizetype index, const AudioSettings &track)
{
    const QString path = fieldPath(kList, index, "inputChannels"_L1);
    if (!layoutOf(track))
        draft.problem(path, u"AAC carries 1 to 8 or 16 channels, not %1"_s.arg(track.inputChannels().size()));
    const std::optional<int> available =
        draft.request.input().isEmpty() ? kTestChannels : draft.request.inputChannels();
    for (const qint64 channel : track.inputChannels()) {
        if (channel < 0)
            draft.problem(path, u"channels are counted from 0, there is no channel %1"_s.arg(channel));
        else if (available && channel >= *available)
            draft.problem(path,
                          u"the source has %1 channels, counted from 0, and no channel %2"_s.arg(*available)
                              .arg(channel));
    }
}

void checkRates(PlanDraft &draft, qsizetype index, const AudioSettings &track)
{
    if (std::find(kSampleRates.begin(), kSampleRates.end(), track.sampleRate()) == kSampleRates.end()) {
        draft.problem(fieldPath(kList, index, "sampleRate"_L1),
                      u"AAC has no sample rate of %1 Hz"_s.arg(track.sampleRate()));
        return;
    }
    // A frame of 1024 samples takes at most 6144 bits per channel; the encoder silently keeps to that.
    const qint64 highest = track.inputChannels().size() * track.sampleRate() * 6144 / 1024 / 1000;
    if (layoutOf(track) && (track.bitRate() <= 0 || track.bitRate() > highest))
        draft.problem(
            fieldPath(kList, index, "bitRate"_L1),
            u"must be above 0 and at most %1 kbit/s at this sample rate and number of channels"_s.arg(
                highest));
}

void addEncoder(PlanDraft &draft, qsizetype index, const AudioSettings &track)
{
    const QString stream = u":a:"_s + QString::number(index);
    draft.streams.add({u"-map"_s, u"[a%1]"_s.arg(index), u"-c"_s + stream, u"aac"_s, u"-profile"_s + stream,
                       u"aac_low"_s, u"-b"_s + stream, QString::number(track.bitRate()) + u'k',
                       u"-ar"_s + stream, QString::number(track.sampleRate())});
    if (draft.container && draft.container->carriesLanguages) {
        const QString code = languageCode(track.language());
        if (code.isEmpty())
            draft.note(fieldPath(kList, index, "language"_L1), u"no ISO 639 language, left out"_s);
        else
            draft.streams.add({u"-metadata:s"_s + stream, "language="_L1 + code});
    }
    draft.streams.add({u"-disposition"_s + stream, track.isDefault() ? u"default"_s : u"0"_s});
}

/// The channels are picked by number. (The `pan` filter remixes when layouts of equal size differ.)
QString filterOf(qsizetype index, const QString &source, const AudioSettings &track)
{
    QStringList channels;
    for (const qint64 channel : track.inputChannels())
        channels.append(QString::number(channel));
    return u"%1channelmap=%2:%3[a%4]"_s.arg(source, channels.join(u'|'), layoutOf(track)->name).arg(index);
}

/// A tone of its own for each channel: 200 Hz for the first, 100 Hz more for each one after it.
void addTestTones(PlanDraft &draft, const AudioSettingsList &tracks)
{
    qint64 channels = 0;
    qint64 sampleRate = 0;
    for (const auto &track : tracks) {
        sampleRate = std::max(sampleRate, track->sampleRate());
        for (const qint64 channel : track->inputChannels())
            channels = std::max(channels, channel + 1);
    }
    QStringList tones;
    for (qint64 channel = 0; channel < channels; ++channel)
        tones.append(u"0.2*sin(2*PI*%1*t)"_s.arg(200 + 100 * channel));
    draft.addInput(
        {u"-f"_s, u"lavfi"_s, u"-i"_s, u"aevalsrc=%1:s=%2"_s.arg(tones.join(u'|')).arg(sampleRate)});
}

void addNotes(PlanDraft &draft)
{
    draft.note(u"bitsPerSample"_s, u"AAC keeps none, the encoder works on floating-point samples"_s);
    if (!draft.container)
        return;
    draft.note(u"trackName"_s, draft.container->name + " as the encoder writes it has no track names"_L1);
    if (!draft.container->carriesLanguages)
        draft.note(u"language"_s, draft.container->name + " names no languages"_L1);
    if (!draft.container->marksDefault && draft.preset.audioSettings().size() > 1)
        draft.note(u"isDefault"_s, draft.container->name + " marks no default track"_L1);
}

} // namespace

void planAudio(PlanDraft &draft)
{
    const AudioSettingsList &tracks = draft.preset.audioSettings();
    if (tracks.isEmpty())
        return;
    if (draft.container && draft.container->carriesOnePairOnly && tracks.size() > 1)
        draft.problem(fieldPath(kList, 1),
                      u"%1 carries one audio stream, this preset has %2"_s.arg(draft.container->name)
                          .arg(tracks.size()));
    for (qsizetype i = 0; i < tracks.size(); ++i) {
        checkChannels(draft, i, *tracks[i]);
        checkRates(draft, i, *tracks[i]);
    }
    if (!draft.problems.isEmpty())
        return;

    const bool isTest = draft.request.input().isEmpty();
    const QString input = isTest ? u"[1:a:0]"_s : u"[0:a:0]"_s;
    QString split;
    QStringList filters;
    for (qsizetype i = 0; i < tracks.size(); ++i) {
        const QString source = tracks.size() == 1 ? input : u"[t%1]"_s.arg(i);
        split += source;
        filters.append(filterOf(i, source, *tracks[i]));
        addEncoder(draft, i, *tracks[i]);
    }
    if (tracks.size() > 1)
        filters.prepend(u"%1asplit=%2%3"_s.arg(input).arg(tracks.size()).arg(split));
    draft.filters += filters;
    if (isTest)
        addTestTones(draft, tracks);
    addNotes(draft);
}

} // namespace vantle::encoder
