// SPDX-License-Identifier: MIT
#include "VantlePresets/model/Assignment.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/model/PresetFactory.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QVariant>

#include <algorithm>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

/// The value that a text means for a field; invalid when it means none.
QVariant parsed(const QString &text, const Field &field)
{
    bool isNumber = false;
    switch (field.type()) {
    case Field::Type::text:
        return hasControls(text) ? QVariant() : text;
    case Field::Type::choice: // which the property converts
        return field.choices().contains(text) ? QVariant(text) : QVariant();
    case Field::Type::boolean:
        return text == "true"_L1 || text == "false"_L1 ? QVariant(text == "true"_L1) : QVariant();
    case Field::Type::integer: {
        const qint64 value = text.toLongLong(&isNumber);
        return isNumber ? QVariant(value) : QVariant();
    }
    case Field::Type::number: {
        const double value = text.toDouble(&isNumber);
        return isNumber && qIsFinite(value) ? QVariant(value) : QVariant();
    }
    case Field::Type::integers: {
        QList<qint64> values;
        for (const QString &item : text.split(u',', Qt::SkipEmptyParts)) {
            values.append(item.trimmed().toLongLong(&isNumber));
            if (!isNumber)
                return {};
        }
        return QVariant::fromValue(values);
    }
    case Field::Type::identifier:
    case Field::Type::renditions:
    case Field::Type::tracks:
        break;
    }
    return {};
}

/// " from 1 to 65535": values outside are taken, and advised against.
QString rangeOf(const Field &field)
{
    if (!field.minimum() || !field.maximum())
        return {};
    return u" from %1 to %2"_s.arg(*field.minimum()).arg(*field.maximum());
}

QString expectation(const Field &field)
{
    switch (field.type()) {
    case Field::Type::text: // which no encoder sends: it would be found out on air
        return u"can't hold a line break or another control character"_s;
    case Field::Type::boolean:
        return u"expected true or false"_s;
    case Field::Type::integer:
        return u"expected an integer"_s + rangeOf(field);
    case Field::Type::number:
        return u"expected a number"_s;
    case Field::Type::integers:
        return u"expected source channels such as 0,1"_s;
    default:
        return "expected one of: "_L1 + field.choices().join(", "_L1);
    }
}

std::optional<Field> fieldIn(const QList<Field> &fields, const QString &key)
{
    const auto found =
        std::find_if(fields.begin(), fields.end(), [&](const Field &field) { return field.key() == key; });
    return found == fields.end() || !found->isAssignable() ? std::nullopt : std::optional(*found);
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

AssignmentError::AssignmentError(const QString &path, const QString &reason)
    : std::runtime_error(QString(path + ": "_L1 + reason).toStdString())
{
}
AssignmentError::~AssignmentError() = default;

struct Assignment::Data
{
    enum class Operation { assign, add, remove };

    /// The rendition or track; null for the preset itself.
    [[nodiscard]] QObject *element(const VantlePreset &preset) const;
    [[nodiscard]] std::optional<Field> field(const VantlePreset &preset) const;
    [[nodiscard]] const QList<Field> &fields(const VantlePreset &preset) const;
    [[nodiscard]] QString hint(const QList<Field> &present) const;
    [[nodiscard]] qsizetype index(qsizetype size) const;
    void assignTo(VantlePreset &preset) const;
    void addTo(VantlePreset &preset) const;
    void removeFrom(VantlePreset &preset) const;
    void requireLists(const VantlePreset &preset) const;

    Operation operation = Operation::assign;
    QString path;
    QString list; ///< "videoSettings", "audioSettings" or ""
    QString place;
    QString key;
    QString value;
};

Assignment::Assignment(std::shared_ptr<const Data> data) : d(std::move(data)) {}

std::optional<Assignment> Assignment::parse(const QString &text)
{
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(u"(?:(videoSettings|audioSettings)(?:\\.(\\+)|(?:\\.(\\d+)|\\[("
                                            u"\\d+)\\])\\.(?:(-)|(\\w+)))|(\\w+))"
                                            "(?:=(.*))?"_s),
        QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    Data data;
    data.list = match.captured(1);
    data.place = match.captured(3) + match.captured(4);
    data.key = match.captured(6) + match.captured(7);
    data.value = match.captured(8);
    QStringList path{data.list, data.place, match.captured(2) + match.captured(5) + data.key};
    path.removeAll(QString());
    data.path = path.join(u'.');
    if (match.hasCaptured(2))
        data.operation = Data::Operation::add;
    else if (match.hasCaptured(5))
        data.operation = Data::Operation::remove;
    if (match.hasCaptured(8) != (data.operation == Data::Operation::assign))
        return std::nullopt;
    return Assignment(std::make_shared<Data>(data));
}

const QString &Assignment::path() const
{
    return d->path;
}

const QString &Assignment::value() const
{
    return d->value;
}

bool Assignment::takesText() const
{
    const auto hasText = [this](const QList<Field> &fields) {
        const auto field = fieldIn(fields, d->key);
        return field && field->type() == Field::Type::text;
    };
    if (d->list == "videoSettings"_L1)
        return hasText(VideoSettings::fields());
    if (d->list == "audioSettings"_L1)
        return hasText(AudioSettings::fields());
    const auto types = streamingTypes().values();
    return std::any_of(types.begin(), types.end(),
                       [&](StreamingType type) { return hasText(presetFields(type)); });
}

Assignment Assignment::withValue(const QString &value) const
{
    Data data = *d;
    data.value = value;
    return Assignment(std::make_shared<Data>(data));
}

void Assignment::apply(VantlePreset &preset) const
{
    switch (d->operation) {
    case Data::Operation::add:
        d->addTo(preset);
        return;
    case Data::Operation::remove:
        d->removeFrom(preset);
        return;
    case Data::Operation::assign:
        d->assignTo(preset);
        return;
    }
}

QString Assignment::limitation(const VantlePreset &preset) const
{
    if (d->operation != Data::Operation::assign)
        return {};
    const auto field = d->field(preset);
    if (!field || field->type() != Field::Type::integer)
        return {};
    const QObject *const element = d->element(preset);
    const QObject &object = element ? *element : preset;
    const qint64 present = object.property(field->key().data()).toLongLong();
    const qint64 wanted = d->value.toLongLong();
    if (present == wanted)
        return {};
    if (wanted < 0)
        return u"%1 is below zero, set to %2"_s.arg(wanted).arg(present);
    return u"limited to %1 by the profile"_s.arg(present);
}

void Assignment::requireKept(const VantlePreset &preset) const
{
    if (d->operation != Data::Operation::assign || !d->list.isEmpty())
        return;
    const auto field = d->field(preset);
    if (!field || !field->isKept(preset.type()))
        throw AssignmentError(d->path,
                              "not kept in the files of "_L1 + displayName(preset.type()) + " presets"_L1);
    const QLatin1StringView flag = field->keptWhile();
    if (!flag.isEmpty() && !preset.property(flag.data()).toBool())
        throw AssignmentError(d->path, "kept only while "_L1 + flag + " is true"_L1);
}

void Assignment::Data::assignTo(VantlePreset &preset) const
{
    QObject *const listed = element(preset);
    QObject &object = listed ? *listed : preset;
    const auto assigned = field(preset);
    if (!assigned)
        throw AssignmentError(path, u"no such field, or one that can't be set here"_s + hint(fields(preset)));
    const QVariant wanted = parsed(value, *assigned);
    if (!wanted.isValid() || !object.setProperty(assigned->key().data(), wanted))
        throw AssignmentError(path, expectation(*assigned));
    if (key == "isDefault"_L1 && wanted.toBool())
        makeOnlyDefault(preset, object);
}

/// What may have been meant: the field of a rendition or a track, or one whose name holds the word.
QString Assignment::Data::hint(const QList<Field> &present) const
{
    QStringList places;
    if (list.isEmpty() && fieldIn(VideoSettings::fields(), key))
        places.append("videoSettings.0."_L1 + key);
    if (list.isEmpty() && fieldIn(AudioSettings::fields(), key))
        places.append("audioSettings.0."_L1 + key);
    for (const Field &field : present) {
        if (field.isAssignable() && field.key().contains(key, Qt::CaseInsensitive))
            places.append(field.key());
    }
    return places.isEmpty() ? QString() : "; did you mean "_L1 + places.join(" or "_L1) + u'?';
}

const QList<Field> &Assignment::Data::fields(const VantlePreset &preset) const
{
    if (list == "videoSettings"_L1)
        return VideoSettings::fields();
    if (list == "audioSettings"_L1)
        return AudioSettings::fields();
    return preset.fields();
}

std::optional<Field> Assignment::Data::field(const VantlePreset &preset) const
{
    return fieldIn(fields(preset), key);
}

QObject *Assignment::Data::element(const VantlePreset &preset) const
{
    if (list == "videoSettings"_L1)
        return preset.videoSettings()[index(preset.videoSettings().size())].get();
    if (list == "audioSettings"_L1)
        return preset.audioSettings()[index(preset.audioSettings().size())].get();
    return nullptr;
}

qsizetype Assignment::Data::index(qsizetype size) const
{
    bool isNumber = false;
    const qlonglong wanted = place.toLongLong(&isNumber);
    if (!isNumber || wanted >= size)
        throw AssignmentError(path, u"the list has %1 entries, counted from 0"_s.arg(size));
    return wanted;
}

void Assignment::Data::requireLists(const VantlePreset &preset) const
{
    if (preset.type() != StreamingType::hls && preset.type() != StreamingType::srt)
        throw AssignmentError(path,
                              displayName(preset.type()) + " presets keep their renditions and tracks"_L1);
}

void Assignment::Data::addTo(VantlePreset &preset) const
{
    requireLists(preset);
    if (list == "videoSettings"_L1)
        preset.newVideoSettings();
    else
        preset.newAudioSettings();
}

void Assignment::Data::removeFrom(VantlePreset &preset) const
{
    requireLists(preset);
    if (list == "videoSettings"_L1) {
        VideoSettingsList renditions = preset.videoSettings();
        renditions.removeAt(index(renditions.size()));
        preset.setVideoSettings(renditions);
    } else {
        AudioSettingsList tracks = preset.audioSettings();
        tracks.removeAt(index(tracks.size()));
        preset.setAudioSettings(tracks);
    }
}

} // namespace vantle
