// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/core/EnumerationTable.h"
#include "VantlePresets/core/FieldFacts.h"
#include "VantlePresets/document/DocumentReader.h"
#include "VantlePresets/document/DocumentWriter.h"

#include <QtCore/QMetaEnum>
#include <QtCore/QMetaType>

namespace vantle {

/// What reading an enumeration takes; specialised with
///   static constexpr QLatin1StringView kName;                                its name in errors
///   static constexpr std::optional<Enumeration> kWhenUnknown;                nothing: unknown texts are
///   errors static const EnumerationTable<Enumeration> &table();
template <class Enumeration>
struct EnumerationFacts;

/// How a value of the type stands in documents: type, read(), write().
template <class T>
struct FieldAccess
{
    static constexpr auto kType = Field::Type::choice;
    using Facts = EnumerationFacts<T>;

    static QStringList choices() { return Facts::table().texts(); }

    static T read(const document::ObjectReader &object, const FieldFacts &field)
    {
        const QUtf8StringView text = object.text(field.keyBytes());
        if (const auto known = Facts::table().fromText(text))
            return *known;
        if (Facts::kWhenUnknown)
            return *Facts::kWhenUnknown;
        object.fail(field.keyBytes(), QLatin1StringView("Invalid ") + Facts::kName +
                                          QLatin1StringView(" display string: ") + text.toString());
    }

    static void write(document::DocumentWriter &writer, const char *key, T value)
    {
        writer.string(key, Facts::table().text(value));
    }
};

template <>
struct FieldAccess<qint64>
{
    static constexpr auto kType = Field::Type::integer;
    static qint64 read(const document::ObjectReader &object, const FieldFacts &field)
    {
        const std::string_view key = field.keyBytes();
        return field.valueWhenAbsent ? object.optionalInteger(key).value_or(*field.valueWhenAbsent)
                                     : object.integer(key);
    }
    static void write(document::DocumentWriter &writer, const char *key, qint64 value)
    {
        writer.integer(key, value);
    }
};

template <>
struct FieldAccess<double>
{
    static constexpr auto kType = Field::Type::number;
    static double read(const document::ObjectReader &object, const FieldFacts &field)
    {
        return object.number(field.keyBytes());
    }
    static void write(document::DocumentWriter &writer, const char *key, double value)
    {
        writer.number(key, value);
    }
};

template <>
struct FieldAccess<bool>
{
    static constexpr auto kType = Field::Type::boolean;
    static bool read(const document::ObjectReader &object, const FieldFacts &field)
    {
        return object.boolean(field.keyBytes());
    }
    static void write(document::DocumentWriter &writer, const char *key, bool value)
    {
        writer.boolean(key, value);
    }
};

template <>
struct FieldAccess<QString>
{
    static constexpr auto kType = Field::Type::text;
    static QString read(const document::ObjectReader &object, const FieldFacts &field)
    {
        return object.string(field.keyBytes());
    }
    static void write(document::DocumentWriter &writer, const char *key, const QString &value)
    {
        writer.string(key, value);
    }
};

template <>
struct FieldAccess<QList<qint64>>
{
    static constexpr auto kType = Field::Type::integers;
    static QList<qint64> read(const document::ObjectReader &object, const FieldFacts &field)
    {
        const document::ArrayReader array = object.array(field.keyBytes());
        QList<qint64> values;
        values.reserve(array.size());
        for (qsizetype i = 0; i < array.size(); ++i)
            values.append(array.integerAt(i));
        return values;
    }
    static void write(document::DocumentWriter &writer, const char *key, const QList<qint64> &values)
    {
        writer.integers(key, values);
    }
};

/// Lets Qt convert between the types with a function that gives nothing for what it refuses. A host may have
/// taught Qt the same before: then its way stays.
template <class From, class To, class Function>
bool registerConversion(Function convert)
{
    const QMetaType from = QMetaType::fromType<From>();
    const QMetaType to = QMetaType::fromType<To>();
    return QMetaType::hasRegisteredConverterFunction(from, to) ||
           QMetaType::registerConverterFunction(
               [convert](const void *source, void *target) {
                   const std::optional<To> value = convert(*static_cast<const From *>(source));
                   if (value)
                       *static_cast<To *>(target) = *value;
                   return value.has_value();
               },
               from, to);
}

/// Lets a property of the type be set from its display strings, from the enumerators' names and from numbers,
/// none of which can bring a value that the enumeration does not have, and be read as its display string.
template <class Enumeration>
bool registerConversions()
{
    using Facts = EnumerationFacts<Enumeration>;
    const auto fromText = [](const QString &text) -> std::optional<Enumeration> {
        if (const auto known = Facts::table().fromText(text))
            return known;
        bool isEnumerator = false;
        const int value =
            QMetaEnum::fromType<Enumeration>().keyToValue(text.toUtf8().constData(), &isEnumerator);
        return isEnumerator ? Facts::table().fromRawValue(value) : std::nullopt;
    };
    const auto toText = [](Enumeration value) {
        const bool isKnown = Facts::table().fromRawValue(static_cast<qint64>(value)).has_value();
        return isKnown ? std::optional<QString>(Facts::table().text(value)) : std::nullopt;
    };
    const auto fromNumber = [](auto number) -> std::optional<Enumeration> {
        for (const auto &known : Facts::table().cases) {
            const auto value = static_cast<int>(known.value);
            if (static_cast<decltype(number)>(value) == number && (value >= 0) == (number >= 0))
                return known.value;
        }
        return std::nullopt;
    };
    return registerConversion<QString, Enumeration>(fromText) &&
           registerConversion<QByteArray, Enumeration>(
               [fromText](const QByteArray &text) { return fromText(QString::fromUtf8(text)); }) &&
           registerConversion<Enumeration, QString>(toText) &&
           registerConversion<int, Enumeration>(fromNumber) &&
           registerConversion<uint, Enumeration>(fromNumber) &&
           registerConversion<qint64, Enumeration>(fromNumber) &&
           registerConversion<quint64, Enumeration>(fromNumber) &&
           registerConversion<double, Enumeration>(fromNumber);
}

} // namespace vantle
