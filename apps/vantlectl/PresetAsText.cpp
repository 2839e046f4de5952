// SPDX-License-Identifier: MIT
#include "apps/vantlectl/LevelFit.h"
#include "apps/vantlectl/PresetText.h"
#include "apps/vantlectl/PresetView.h"
#include "apps/vantlectl/Secret.h"
#include "apps/vantlectl/Table.h"
#include "apps/vantlectl/encoder/StreamAddress.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SRTVantlePreset.h"

#include <QtCore/QLocale>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

QString orDash(const QString &text)
{
    return text.isEmpty() ? u"-"_s : text;
}

QString yesNo(bool value)
{
    return value ? u"yes"_s : u"no"_s;
}

void addConnection(Table &table, const RTMPVantlePreset &preset, bool reveal)
{
    table.add({u"Server"_s, orDash(shownAddress(preset.streamingURL(), reveal))});
    table.add({u"Port"_s, QString::number(preset.portNumber())});
    table.add({u"Protocol"_s, displayName(preset.streamingProtocol())});
    if (preset.type() == StreamingType::youTube || preset.type() == StreamingType::facebook) {
        table.add({u"Application"_s, orDash(preset.application())});
        table.add({u"Stream key"_s, orDash(secret(preset.streamKey(), reveal))});
        table.add({u"Backup"_s, yesNo(preset.isBackup())});
    }
    table.add({u"Authentication"_s, yesNo(preset.authenticate())});
    if (preset.authenticate()) {
        table.add({u"Login"_s, orDash(preset.authenticationLogin())});
        table.add({u"Password"_s, orDash(secret(preset.authenticationPassword(), reveal))});
    }
}

void addConnection(Table &table, const SRTVantlePreset &preset, bool reveal)
{
    table.add({u"Server"_s, orDash(shownAddress(preset.streamingURL(), reveal))});
    table.add({u"Port"_s, QString::number(preset.portNumber())});
    table.add({u"Authentication"_s, yesNo(preset.authenticate())});
}

/// Whether the named level suffices, in words.
QString verdictOf(const LevelFit &fit)
{
    if (!fit.isKnownProfile)
        return u"no such profile for this codec"_s;
    if (!fit.sizeFits)
        return u"frame size and rate too large to check"_s;
    QStringList faults;
    if (!fit.bitRateFits)
        faults += "bit rate above "_L1 + QString::number(fit.maxBitRate);
    if (!*fit.sizeFits)
        faults += u"frame size and rate too large"_s;
    return faults.isEmpty() ? u"fits"_s : faults.join(u", "_s);
}

void addRenditions(Table &table, const VideoSettingsList &renditions)
{
    if (renditions.isEmpty())
        return;
    table.add({u"#"_s, u"Codec"_s, u"Frame size"_s, u"fps"_s, u"kbit/s"_s, u"PID"_s, u"Profile and level"_s,
               u"Lowest level"_s, u"Level check"_s});
    for (qsizetype i = 0; i < renditions.size(); ++i) {
        const VideoSettings &video = *renditions[i];
        const LevelFit fit = levelFitOf(video);
        table.add({QString::number(i + 1), displayName(video.codec()),
                   QString::number(video.width()) + " x "_L1 + QString::number(video.height()),
                   QString::number(video.frameRate(), 'g', QLocale::FloatingPointShortest),
                   QString::number(video.bitRate()), QString::number(video.pid()), orDash(video.profile()),
                   fit.lowestLevel.value_or(u"none"_s), verdictOf(fit)});
    }
}

/// The source's channels as the forms number them, from 1.
QString channelsOf(const AudioSettings &track)
{
    QStringList numbers;
    for (const qint64 channel : track.inputChannels())
        numbers +=
            channel < 0 ? QString::number(channel) : QString::number(static_cast<quint64>(channel) + 1);
    return orDash(numbers.join(u' '));
}

void addTracks(Table &table, const AudioSettingsList &tracks)
{
    if (tracks.isEmpty())
        return;
    table.add({u"#"_s, u"Name"_s, u"Language"_s, u"Codec"_s, u"Hz"_s, u"Bits"_s, u"kbit/s"_s, u"PID"_s,
               u"Channels"_s, u"Default"_s});
    for (qsizetype i = 0; i < tracks.size(); ++i) {
        const AudioSettings &track = *tracks[i];
        table.add({QString::number(i + 1), orDash(track.trackName()), orDash(track.language()),
                   displayValue(track.codec()), QString::number(track.sampleRate()),
                   QString::number(track.bitsPerSample()), QString::number(track.bitRate()),
                   QString::number(track.pid()), channelsOf(track), track.isDefault() ? u"yes"_s : u"-"_s});
    }
}

} // namespace

QStringList presetAsText(const VantlePreset &preset, bool reveal)
{
    const QString indentation = u"  "_s;
    QStringList lines{escapedControls(preset.name()) + " ("_L1 + displayName(preset.type()) + u')'};
    const auto section = [&lines](const QString &title, const Table &table) {
        const bool isEmpty = table.lines().isEmpty();
        lines << QString() << title << (isEmpty ? QStringList{u"  none"_s} : table.lines());
    };

    Table connection(indentation);
    if (const auto *rtmp = dynamic_cast<const RTMPVantlePreset *>(&preset))
        addConnection(connection, *rtmp, reveal);
    else if (const auto *srt = dynamic_cast<const SRTVantlePreset *>(&preset))
        addConnection(connection, *srt, reveal);
    if (!connection.lines().isEmpty())
        section(u"Connection"_s, connection);

    Table renditions(indentation, {0, 2, 3, 4, 5});
    addRenditions(renditions, preset.videoSettings());
    section(u"Video renditions"_s, renditions);

    Table tracks(indentation, {0, 4, 5, 6, 7});
    addTracks(tracks, preset.audioSettings());
    section(u"Audio tracks"_s, tracks);
    return lines;
}

} // namespace vantle::ctl
