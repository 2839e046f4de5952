// SPDX-License-Identifier: MIT
#include "VantlePresets/encoder/MasterText.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/encoder/PlanDraft.h"

#include <QtCore/QRegularExpression>

#include <algorithm>
#include <cmath>

namespace vantle::encoder {
namespace {

using namespace Qt::StringLiterals;

/// A tag's attributes, in their order: NAME="audio 0",DEFAULT=YES.
class Attributes
{
public:
    explicit Attributes(const QString &text)
    {
        static const QRegularExpression form(u"([A-Z0-9-]+)=(\"[^\"]*\"|[^,]*)"_s);
        for (const QRegularExpressionMatch &match : form.globalMatch(text))
            m_list.append({match.captured(1), match.captured(2)});
    }

    void set(const QString &name, const QString &value)
    {
        const auto found = std::find_if(m_list.begin(), m_list.end(),
                                        [&](const auto &entry) { return entry.first == name; });
        if (found == m_list.end())
            m_list.append({name, value});
        else
            found->second = value;
    }

    [[nodiscard]] QString value(const QString &name) const
    {
        const auto found = std::find_if(m_list.begin(), m_list.end(),
                                        [&](const auto &entry) { return entry.first == name; });
        return found == m_list.end() ? QString() : found->second;
    }

    [[nodiscard]] QString text() const
    {
        QStringList texts;
        for (const auto &[name, value] : m_list)
            texts.append(name + u'=' + value);
        return texts.join(u',');
    }

private:
    QList<std::pair<QString, QString>> m_list;
};

/// 2 of "audio2/index.m3u8"; -1 when it is none of so many.
qsizetype numberIn(const QString &uri, QLatin1StringView kind, qsizetype count)
{
    static const QRegularExpression form(u"\\A\"?([a-z]+)(\\d{1,6})/"_s);
    const QRegularExpressionMatch match = form.match(uri);
    const qsizetype number = match.captured(1) == kind ? match.captured(2).toLongLong() : -1;
    return number < count ? number : -1;
}

/// A playlist's texts stand in quotes and can't escape any.
QString quoted(QString text)
{
    text.replace(u'"', u'\'');
    for (QChar &c : text)
        c = isControl(c) ? QChar(u' ') : c;
    return u'"' + text + u'"';
}

/// Each track's name, different from those before it: "English", "English 2".
QStringList namesOf(const AudioSettingsList &tracks)
{
    QStringList names;
    for (const auto &track : tracks) {
        const QString wanted = !track->trackName().isEmpty()  ? track->trackName()
                               : !track->language().isEmpty() ? track->language()
                                                              : u"Audio"_s;
        QString name = wanted;
        for (int number = 2; names.contains(name); ++number)
            name = wanted + u' ' + QString::number(number);
        names.append(name);
    }
    return names;
}

/// Players choose by language among these tracks, which therefore have one of their own each.
bool isChosenByLanguage(const VantlePreset &preset, qsizetype index)
{
    const AudioSettingsList &tracks = preset.audioSettings();
    const qsizetype first = defaultTrack(preset);
    if (index == first)
        return true;
    const QString language = tracks[index]->language();
    return language != tracks[first]->language() &&
           std::none_of(tracks.begin(), tracks.begin() + index,
                        [&](const auto &track) { return track->language() == language; });
}

QString completeTrack(const VantlePreset &preset, const QString &text)
{
    Attributes attributes(text);
    const AudioSettingsList &tracks = preset.audioSettings();
    const qsizetype index = numberIn(attributes.value(u"URI"_s), "audio"_L1, tracks.size());
    if (index < 0)
        return text;
    const auto yesOrNo = [](bool yes) { return yes ? u"YES"_s : u"NO"_s; };
    attributes.set(u"NAME"_s, quoted(namesOf(tracks)[index]));
    attributes.set(u"DEFAULT"_s, yesOrNo(index == defaultTrack(preset)));
    attributes.set(u"AUTOSELECT"_s, yesOrNo(isChosenByLanguage(preset, index)));
    attributes.set(u"CHANNELS"_s, u"\"%1\""_s.arg(tracks[index]->inputChannels().size()));
    return attributes.text();
}

QString completeRendition(const VantlePreset &preset, const QString &text, const QString &uri)
{
    const VideoSettingsList &renditions = preset.videoSettings();
    const qsizetype index = numberIn(uri, "video"_L1, renditions.size());
    if (index < 0)
        return text;
    // The loudest combination that can be played counts.
    qint64 audioRate = 0;
    for (const auto &track : preset.audioSettings())
        audioRate = std::max(audioRate, track->bitRate());
    const qint64 bitsPerSecond = (renditions[index]->bitRate() + audioRate) * 1000;
    // Rates are those of the encoded streams; packets add to them. The peak is what the encoder writes, too.
    Attributes attributes(text);
    attributes.set(u"BANDWIDTH"_s, QString::number(bitsPerSecond * 110 / 100));
    attributes.set(u"AVERAGE-BANDWIDTH"_s, QString::number(bitsPerSecond * 105 / 100));
    attributes.set(u"FRAME-RATE"_s, QString::number(renditions[index]->frameRate(), 'f', 3));
    return attributes.text();
}

} // namespace

QByteArray completedMaster(const VantlePreset &preset, const QByteArray &written)
{
    constexpr auto kTrack = "#EXT-X-MEDIA:"_L1;
    constexpr auto kRendition = "#EXT-X-STREAM-INF:"_L1;
    constexpr auto kVersion = "#EXT-X-VERSION:"_L1;
    constexpr auto kIndependent = "#EXT-X-INDEPENDENT-SEGMENTS"_L1;
    const QStringList lines = QString::fromUtf8(written).split(u'\n');
    QStringList completed;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString &line = lines[i];
        if (line.startsWith(kTrack))
            completed.append(kTrack + completeTrack(preset, line.sliced(kTrack.size())));
        else if (line.startsWith(kRendition))
            completed.append(kRendition +
                             completeRendition(preset, line.sliced(kRendition.size()), lines.value(i + 1)));
        else
            completed.append(line);
        if (line.startsWith(kVersion) && !lines.contains(kIndependent))
            completed.append(kIndependent);
    }
    return completed.join(u'\n').toUtf8();
}

} // namespace vantle::encoder
