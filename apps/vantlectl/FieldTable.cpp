// SPDX-License-Identifier: MIT
#include "apps/vantlectl/FieldTable.h"

#include "VantlePresets/document/DocumentWriter.h"
#include "VantlePresets/model/PresetFactory.h"

namespace vantle::ctl {

using namespace Qt::StringLiterals;

QList<AssignableField> assignableFields(StreamingType type)
{
    QList<AssignableField> list;
    const auto add = [&list](const QString &prefix, const Field &field) {
        if (field.isAssignable())
            list.append({prefix + field.key(), field});
    };
    for (const Field &field : presetFields(type)) {
        if (field.isKept(type))
            add({}, field);
    }
    for (const Field &field : VideoSettings::fields())
        add(u"videoSettings.0."_s, field);
    for (const Field &field : AudioSettings::fields())
        add(u"audioSettings.0."_s, field);
    return list;
}

QString fieldTypeText(const Field &field)
{
    switch (field.type()) {
    case Field::Type::integer:
        return u"integer"_s;
    case Field::Type::number:
        return u"number"_s;
    case Field::Type::boolean:
        return u"boolean"_s;
    case Field::Type::choice:
        return u"choice"_s;
    case Field::Type::integers:
        return u"integers"_s;
    default:
        return u"text"_s;
    }
}

void writeField(document::DocumentWriter &writer, const AssignableField &assignable)
{
    const Field &field = assignable.field;
    writer.beginObject();
    writer.string("field", assignable.path);
    writer.string("label", field.label());
    writer.string("type", fieldTypeText(field));
    if (field.type() == Field::Type::choice) {
        writer.key("choices");
        writer.beginArray();
        for (const QString &choice : field.choices())
            writer.string(choice);
        writer.endArray();
    }
    if (field.minimum())
        writer.integer("minimum", *field.minimum());
    if (field.maximum())
        writer.integer("maximum", *field.maximum());
    if (!field.unit().isEmpty())
        writer.string("unit", field.unit());
    if (!field.keptWhile().isEmpty())
        writer.string("keptWhile", field.keptWhile());
    writer.boolean("isSecret", field.isSecret());
    writer.endObject();
}

} // namespace vantle::ctl
