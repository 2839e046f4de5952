// SPDX-License-Identifier: MIT
#include "VantlePresets/model/PresetSchema.h"

#include "VantlePresets/document/DocumentWriter.h"
#include "VantlePresets/model/PresetFactory.h"

#include <algorithm>
#include <functional>
#include <limits>

namespace vantle {
namespace {

using document::DocumentWriter;
using Chosen = std::function<bool(const Field &field)>;

void writeTexts(DocumentWriter &writer, const char *key, const QStringList &texts)
{
    writer.key(key);
    writer.beginArray();
    for (const QString &text : texts)
        writer.string(text);
    writer.endArray();
}

void writeReference(DocumentWriter &writer, const char *name)
{
    writer.string("$ref", QStringLiteral("#/$defs/") + QLatin1StringView(name));
}

void writeList(DocumentWriter &writer, const char *itemName)
{
    writer.string("type", QStringLiteral("array"));
    writer.key("items");
    writer.beginObject();
    writeReference(writer, itemName);
    writer.endObject();
}

/// An integer, or null for the value that stands for an absent one.
void writeOptionalInteger(DocumentWriter &writer)
{
    writer.key("anyOf");
    writer.beginArray();
    writer.beginObject();
    writeReference(writer, "integer");
    writer.endObject();
    writer.beginObject();
    writer.string("type", QStringLiteral("null"));
    writer.endObject();
    writer.endArray();
}

QString descriptionOf(const Field &field)
{
    QString text = field.meaning();
    if (text.isEmpty())
        text = field.label() + QLatin1StringView(field.unit().isEmpty() ? "." : ", in ") + field.unit() +
               QLatin1StringView(field.unit().isEmpty() ? "" : ".");
    if (const auto value = field.valueWhenAbsent())
        text += QStringLiteral(" %1 when absent or null.").arg(*value);
    return text;
}

void writeType(DocumentWriter &writer, const Field &field)
{
    switch (field.type()) {
    case Field::Type::text:
        writer.string("type", QStringLiteral("string"));
        return;
    case Field::Type::integer:
        if (field.valueWhenAbsent())
            writeOptionalInteger(writer);
        else
            writeReference(writer, "integer");
        return;
    case Field::Type::number:
        writer.string("type", QStringLiteral("number"));
        return;
    case Field::Type::boolean:
        writer.string("type", QStringLiteral("boolean"));
        return;
    case Field::Type::choice:
        writeTexts(writer, "enum", field.choices());
        return;
    case Field::Type::integers:
        writeList(writer, "integer");
        return;
    case Field::Type::identifier:
        writer.string("type", QStringLiteral("string"));
        writer.string("format", QStringLiteral("uuid"));
        return;
    case Field::Type::renditions:
        writeList(writer, "video");
        return;
    case Field::Type::tracks:
        writeList(writer, "audio");
        return;
    }
}

bool isRequired(const Field &field)
{
    return field.isRead() && !field.valueWhenAbsent() && field.type() != Field::Type::identifier;
}

/// The chosen fields as "required" and "properties".
void writeFields(DocumentWriter &writer, const QList<Field> &fields, const Chosen &isChosen)
{
    QStringList required;
    for (const Field &field : fields) {
        if (isChosen(field) && isRequired(field))
            required.append(field.key());
    }
    writeTexts(writer, "required", required);
    writer.key("properties");
    writer.beginObject();
    for (const Field &field : fields) {
        if (!isChosen(field))
            continue;
        writer.key(field.key().data());
        writer.beginObject();
        writer.string("description", descriptionOf(field));
        if (field.isRead()) // what is not read may be anything
            writeType(writer, field);
        writer.endObject();
    }
    writer.endObject();
}

/// "if" a member has the value; the caller writes "then".
template <class WriteValue>
void writeCondition(DocumentWriter &writer, const char *key, WriteValue writeValue)
{
    writer.key("if");
    writer.beginObject();
    writeTexts(writer, "required", {QString::fromLatin1(key)});
    writer.key("properties");
    writer.beginObject();
    writer.key(key);
    writer.beginObject();
    writeValue();
    writer.endObject();
    writer.endObject();
    writer.endObject();
}

bool isOfAllKinds(const Field &field)
{
    const auto types = streamingTypes().values();
    return std::all_of(types.begin(), types.end(), [&](StreamingType type) {
        const QList<Field> &fields = presetFields(type);
        return std::any_of(fields.begin(), fields.end(), [&](const Field &other) {
            return other.key() == field.key() && other.isKept(type);
        });
    });
}

/// What the files of one kind hold beyond those of all.
void writeKind(DocumentWriter &writer, StreamingType type)
{
    const QList<Field> &fields = presetFields(type);
    QString flag;
    for (const Field &field : fields) {
        if (field.isKept(type) && !field.keptWhile().isEmpty())
            flag = field.keptWhile();
    }
    writer.beginObject();
    writeCondition(writer, "type", [&] { writer.string("const", streamingTypes().text(type)); });
    writer.key("then");
    writer.beginObject();
    writeFields(writer, fields, [&](const Field &field) {
        return field.isKept(type) && field.keptWhile().isEmpty() && !isOfAllKinds(field);
    });
    if (!flag.isEmpty()) {
        writeCondition(writer, flag.toLatin1().constData(), [&] { writer.boolean("const", true); });
        writer.key("then");
        writer.beginObject();
        writeFields(writer, fields,
                    [&](const Field &field) { return field.isKept(type) && field.keptWhile() == flag; });
        writer.endObject();
    }
    writer.endObject();
    writer.endObject();
}

void writeInteger(DocumentWriter &writer)
{
    writer.key("integer");
    writer.beginObject();
    writer.string(
        "description",
        QStringLiteral("Any JSON number that is exactly an integer of 64 bits: 30, 30.0 and 3e1 are "
                       "the same."));
    writer.string("type", QStringLiteral("integer"));
    writer.integer("minimum", std::numeric_limits<qint64>::min());
    writer.integer("maximum", std::numeric_limits<qint64>::max());
    writer.endObject();
}

void writeRecord(DocumentWriter &writer, const char *name, const QList<Field> &fields)
{
    writer.key(name);
    writer.beginObject();
    writer.string("type", QStringLiteral("object"));
    writeFields(writer, fields, [](const Field &) { return true; });
    writer.endObject();
}

} // namespace

QByteArray presetSchema()
{
    return document::encode(document::Format::pretty, [](DocumentWriter &writer) {
        writer.beginObject();
        writer.string("$schema", QStringLiteral("https://json-schema.org/draft/2020-12/schema"));
        writer.string("title", QStringLiteral("Live-streaming preset"));
        writer.string("description",
                      QStringLiteral("One preset file. The preset's name is the file's name without .json. "
                                     "Keys that are not listed here are ignored."));
        writer.string("type", QStringLiteral("object"));
        writeFields(writer, presetFields(StreamingType::hls), isOfAllKinds);
        writer.key("allOf");
        writer.beginArray();
        for (const StreamingType type : streamingTypes().values())
            writeKind(writer, type);
        writer.endArray();
        writer.key("$defs");
        writer.beginObject();
        writeInteger(writer);
        writeRecord(writer, "video", VideoSettings::fields());
        writeRecord(writer, "audio", AudioSettings::fields());
        writer.endObject();
        writer.endObject();
    });
}

} // namespace vantle
