// SPDX-License-Identifier: MIT
#include "apps/vantlectl/PresetView.h"
#include "apps/vantlectl/Table.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/model/Secrets.h"
#include "VantlePresets/settings/LevelFit.h"

#include <QtCore/QLocale>
#include <QtCore/QVariant>

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

/// What the preset's files keep beside the lists, as labels and values.
Table connectionOf(const VantlePreset &preset, bool reveal, const QString &indentation)
{
    Table table(indentation);
    for (const Field &field : preset.fields()) {
        const char *const flag = field.keptWhile().data();
        const bool isKept = field.isKept(preset.type()) && (!flag || preset.property(flag).toBool());
        if (!isKept || !field.isAssignable())
            continue;
        const QVariant value = preset.property(field.key().data());
        QString text = reveal ? value.toString() : shownValue(preset, field);
        if (field.type() == Field::Type::boolean)
            text = yesNo(value.toBool());
        table.add({field.label(), orDash(text)});
    }
    return table;
}

/// Whether the named level suffices, in words.
QString verdictOf(const LevelFit &fit)
{
    if (!fit.isKnownProfile())
        return u"no such profile for this codec"_s;
    if (!fit.sizeFits())
        return u"frame size and rate too large to check"_s;
    QStringList faults;
    if (!fit.bitRateFits())
        faults += "bit rate above "_L1 + QString::number(fit.maxBitRate());
    if (!*fit.sizeFits())
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
        const LevelFit fit(video);
        table.add({QString::number(i + 1), displayName(video.codec()),
                   QString::number(video.width()) + " x "_L1 + QString::number(video.height()),
                   QString::number(video.frameRate(), 'g', QLocale::FloatingPointShortest),
                   QString::number(video.bitRate()), QString::number(video.pid()), orDash(video.profile()),
                   fit.lowestLevel().value_or(u"none"_s), verdictOf(fit)});
    }
}

/// The source's channels as the forms number them, from 1.
QString channelsText(const QList<qint64> &channels)
{
    QStringList numbers;
    for (const qint64 channel : channels)
        numbers +=
            channel < 0 ? QString::number(channel) : QString::number(static_cast<quint64>(channel) + 1);
    return numbers.join(u' ');
}

QString trackText(const AudioSettings &track, const Field &field)
{
    const QVariant value = track.property(field.key().data());
    if (field.type() == Field::Type::integers)
        return channelsText(value.value<QList<qint64>>());
    if (field.type() == Field::Type::boolean)
        return value.toBool() ? u"yes"_s : QString();
    return value.toString();
}

Table tracksOf(const AudioSettingsList &tracks, const QString &indentation)
{
    QStringList titles{u"#"_s};
    QList<qsizetype> numbers{0};
    QList<Field> columns;
    for (const Field &field : AudioSettings::fields()) {
        if (!field.isAssignable())
            continue;
        columns.append(field);
        const bool isPlain = field.unit().isEmpty() || field.unit() == "bits per sample"_L1;
        titles.append(isPlain ? field.label() : field.unit());
        if (field.type() == Field::Type::integer)
            numbers.append(columns.size());
    }
    Table table(indentation, numbers);
    if (!tracks.isEmpty())
        table.add(titles);
    for (qsizetype i = 0; i < tracks.size(); ++i) {
        QStringList cells{QString::number(i + 1)};
        for (const Field &field : std::as_const(columns))
            cells.append(orDash(trackText(*tracks[i], field)));
        table.add(cells);
    }
    return table;
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

    const Table connection = connectionOf(preset, reveal, indentation);
    if (!connection.lines().isEmpty())
        section(u"Connection"_s, connection);

    Table renditions(indentation, {0, 2, 3, 4, 5});
    addRenditions(renditions, preset.videoSettings());
    section(u"Video renditions"_s, renditions);

    section(u"Audio tracks"_s, tracksOf(preset.audioSettings(), indentation));
    return lines;
}

} // namespace vantle::ctl
