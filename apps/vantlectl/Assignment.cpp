// SPDX-License-Identifier: MIT
#include "apps/vantlectl/Assignment.h"

#include "apps/vantlectl/Output.h"
#include "apps/vantlectl/TextValue.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/model/RTMPVantlePreset.h"

#include <QtCore/QMetaProperty>
#include <QtCore/QRegularExpression>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

/// The value that a text means for a property's type; invalid when it means none.
QVariant parsed(const QString &text, const QMetaProperty &property)
{
    const QMetaType type = property.metaType();
    bool isNumber = false;
    if (type == QMetaType::fromType<QString>())
        return textValue(text);
    if (type == QMetaType::fromType<bool>())
        return text == "true"_L1 || text == "false"_L1 ? QVariant(text == "true"_L1) : QVariant();
    if (type == QMetaType::fromType<qint64>()) {
        const qint64 value = text.toLongLong(&isNumber);
        return isNumber ? QVariant(value) : QVariant();
    }
    if (type == QMetaType::fromType<double>()) {
        const double value = text.toDouble(&isNumber);
        return isNumber && qIsFinite(value) ? QVariant(value) : QVariant();
    }
    if (type == QMetaType::fromType<QList<qint64>>()) {
        QList<qint64> values;
        for (const QString &item : text.split(u',', Qt::SkipEmptyParts)) {
            values.append(item.trimmed().toLongLong(&isNumber));
            if (!isNumber)
                return {};
        }
        return QVariant::fromValue(values);
    }
    const auto fromTable = [&](const auto &table) {
        const auto value = table.fromText(text);
        return value ? QVariant::fromValue(*value) : QVariant();
    };
    if (type == QMetaType::fromType<VideoCodec>())
        return fromTable(videoCodecs());
    if (type == QMetaType::fromType<VideoResolution>())
        return fromTable(videoResolutions());
    if (type == QMetaType::fromType<AudioCodecID>())
        return fromTable(audioCodecs());
    if (type == QMetaType::fromType<RTMPVantlePreset::StreamingProtocol>())
        return fromTable(streamingProtocols());
    return {};
}

QString expectation(const QMetaProperty &property)
{
    const QMetaType type = property.metaType();
    const auto oneOf = [](const auto &table) -> QString {
        return "expected one of: "_L1 + table.texts().join(", "_L1);
    };
    if (type == QMetaType::fromType<bool>())
        return u"expected true or false"_s;
    if (type == QMetaType::fromType<qint64>())
        return u"expected an integer"_s;
    if (type == QMetaType::fromType<double>())
        return u"expected a number"_s;
    if (type == QMetaType::fromType<QList<qint64>>())
        return u"expected source channels such as 0,1"_s;
    if (type == QMetaType::fromType<VideoCodec>())
        return oneOf(videoCodecs());
    if (type == QMetaType::fromType<VideoResolution>())
        return oneOf(videoResolutions());
    if (type == QMetaType::fromType<AudioCodecID>())
        return oneOf(audioCodecs());
    return oneOf(streamingProtocols());
}

/// Whether a command may assign the property: kind, name and lists have commands of their own.
bool isAssignable(const QMetaProperty &property)
{
    const QLatin1StringView name(property.name());
    static constexpr std::array kOthers{"type"_L1,          "name"_L1,          "objectName"_L1,
                                        "videoSettings"_L1, "audioSettings"_L1, "defaultAudioSettings"_L1};
    return property.isValid() && property.isWritable() &&
           std::find(kOthers.begin(), kOthers.end(), name) == kOthers.end();
}

QMetaProperty propertyOf(const QObject &object, const QString &name)
{
    const QMetaObject &meta = *object.metaObject();
    return meta.property(meta.indexOfProperty(name.toUtf8().constData()));
}

/// Tracks that came from a file report to nobody: the others' flags are cleared here, so that a file never
/// gets two default tracks.
void makeOnlyDefault(VantlePreset &preset, const QObject &track)
{
    for (const auto &other : preset.audioSettings()) {
        if (other.get() == &track)
            preset.setDefaultAudioSettings(other);
        else if (other->isDefault())
            other->setIsDefault(false);
    }
}

} // namespace

std::optional<Assignment> Assignment::parse(const QString &text)
{
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(
            u"((?:(videoSettings|audioSettings)\\.(?:(\\+)|(\\d+)\\.(?:(-)|(\\w+))))|(\\w+))"
            "(?:=(.*))?"_s),
        QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    Assignment assignment;
    assignment.m_path = match.captured(1);
    assignment.m_list = match.captured(2);
    assignment.m_index = match.captured(4);
    assignment.m_field = match.captured(6) + match.captured(7);
    assignment.m_value = match.captured(8);
    if (match.hasCaptured(3))
        assignment.m_operation = Operation::add;
    else if (match.hasCaptured(5))
        assignment.m_operation = Operation::remove;
    const bool needsValue = assignment.m_operation == Operation::assign;
    return match.hasCaptured(8) == needsValue ? std::optional(assignment) : std::nullopt;
}

std::optional<QList<Assignment>> Assignment::parseAll(const std::vector<std::string> &texts)
{
    QList<Assignment> assignments;
    for (const std::string &text : texts) {
        const auto assignment = parse(QString::fromStdString(text));
        if (!assignment) {
            // Not repeated: "streamKey= key" is two words, and the second one a secret.
            complain(u"assignment %1 is none: not an assignment such as portNumber=1936 or "
                     "videoSettings.0.bitRate=6000"_s.arg(assignments.size() + 1));
            return std::nullopt;
        }
        assignments.append(*assignment);
    }
    return assignments;
}

void Assignment::apply(VantlePreset &preset) const
{
    switch (m_operation) {
    case Operation::add:
        addTo(preset);
        return;
    case Operation::remove:
        removeFrom(preset);
        return;
    case Operation::assign:
        break;
    }
    QObject &object = target(preset);
    const QMetaProperty property = propertyOf(object, m_field);
    if (!isAssignable(property))
        throw AssignmentError(m_path, u"no such field, or one that can't be set here"_s + hint());
    QVariant value;
    try {
        value = parsed(m_value, property);
    } catch (const std::exception &error) {
        throw AssignmentError(m_path, QString::fromUtf8(error.what()));
    }
    if (!value.isValid() || !property.write(&object, value))
        throw AssignmentError(m_path, expectation(property));
    if (m_field == "isDefault"_L1 && value.toBool())
        makeOnlyDefault(preset, object);
}

QString Assignment::limitation(VantlePreset &preset) const
{
    if (m_operation != Operation::assign)
        return {};
    QObject &object = target(preset);
    const QVariant present = propertyOf(object, m_field).read(&object);
    const qint64 wanted = m_value.toLongLong();
    if (present.metaType() != QMetaType::fromType<qint64>() || present.toLongLong() == wanted)
        return {};
    if (wanted < 0)
        return u"%1 is below zero, set to %2"_s.arg(wanted).arg(present.toLongLong());
    return u"limited to %1 by the profile"_s.arg(present.toLongLong());
}

/// Where else the field is: it may have been meant for a rendition or a track.
QString Assignment::hint() const
{
    if (!m_list.isEmpty())
        return {};
    QStringList places;
    const auto look = [&](const QMetaObject &meta, QLatin1StringView list) {
        const QMetaProperty property = meta.property(meta.indexOfProperty(m_field.toUtf8().constData()));
        if (isAssignable(property))
            places.append(list + ".0."_L1 + m_field);
    };
    look(VideoSettings::staticMetaObject, "videoSettings"_L1);
    look(AudioSettings::staticMetaObject, "audioSettings"_L1);
    return places.isEmpty() ? QString() : "; did you mean "_L1 + places.join(" or "_L1) + u'?';
}

QObject &Assignment::target(VantlePreset &preset) const
{
    if (m_list == "videoSettings"_L1)
        return *preset.videoSettings()[index(preset.videoSettings().size())];
    if (m_list == "audioSettings"_L1)
        return *preset.audioSettings()[index(preset.audioSettings().size())];
    return preset;
}

qsizetype Assignment::index(qsizetype size) const
{
    bool isNumber = false;
    const qlonglong wanted = m_index.toLongLong(&isNumber);
    if (!isNumber || wanted >= size)
        throw AssignmentError(m_path, u"the list has %1 entries, counted from 0"_s.arg(size));
    return wanted;
}

void Assignment::requireLists(const VantlePreset &preset) const
{
    if (preset.type() != StreamingType::hls && preset.type() != StreamingType::srt)
        throw AssignmentError(m_path,
                              displayName(preset.type()) + " presets keep their renditions and tracks"_L1);
}

void Assignment::addTo(VantlePreset &preset) const
{
    requireLists(preset);
    if (m_list == "videoSettings"_L1)
        preset.newVideoSettings();
    else
        preset.newAudioSettings();
}

void Assignment::removeFrom(VantlePreset &preset) const
{
    requireLists(preset);
    if (m_list == "videoSettings"_L1) {
        VideoSettingsList renditions = preset.videoSettings();
        renditions.removeAt(index(renditions.size()));
        preset.setVideoSettings(renditions);
    } else {
        AudioSettingsList tracks = preset.audioSettings();
        tracks.removeAt(index(tracks.size()));
        preset.setAudioSettings(tracks);
    }
}

} // namespace vantle::ctl
