// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/core/Enumerations.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace vantle {

struct FieldFacts;

/// What is known of one field of a record, whatever its value: for forms, command lines and other readers of
/// preset files that do not want to name each field.
///
/// The key is the field's name in preset files and the name of the record's Qt property, by which its value
/// is read and set. A small value that refers to constants of the library. Callable from any thread.
class VANTLE_PRESETS_EXPORT Field
{
public:
    /// What a field's value is, here and in JSON.
    enum class Type {
        text,       ///< a string
        integer,    ///< a number that is an integer of 64 bits
        number,     ///< a number
        boolean,    ///< true or false
        choice,     ///< the display string of one of choices()
        integers,   ///< an array of integers
        identifier, ///< a UUID as a string
        renditions, ///< an array of objects with VideoSettings::fields()
        tracks,     ///< an array of objects with AudioSettings::fields()
    };

    /// For the library, which has the facts.
    explicit Field(const FieldFacts &facts) : m_facts(&facts) {}

    /// The name in files, and of the Qt property.
    [[nodiscard]] QLatin1StringView key() const;
    /// One or two words for people: "Stream key".
    [[nodiscard]] QLatin1StringView label() const;
    /// A phrase that explains the field, "" when the label does.
    [[nodiscard]] QLatin1StringView meaning() const;
    /// What its value is.
    [[nodiscard]] Type type() const;
    /// The display strings of a choice in their order, empty for other types.
    [[nodiscard]] QStringList choices() const;

    /// The least and the greatest value that make sense for encoders and servers, if there are such. Files
    /// and setters take any.
    [[nodiscard]] std::optional<qint64> minimum() const;
    /// See minimum().
    [[nodiscard]] std::optional<qint64> maximum() const;
    /// The unit of a number, "" for those without.
    [[nodiscard]] QLatin1StringView unit() const;

    /// Whether the value must not be shown, logged or sent by itself: stream key and password.
    [[nodiscard]] bool isSecret() const;
    /// Whether the value is a server's address, which can hold secrets: see shownAddress().
    [[nodiscard]] bool isAddress() const;
    /// Whether a command or a form may set it alone. Kind, name, identifier, lists and what is derived are
    /// not.
    [[nodiscard]] bool isAssignable() const;

    /// Whether documents of the kind hold it, always or while the field keptWhile() is true. The fields of
    /// renditions and tracks do not depend on the kind.
    [[nodiscard]] bool isKept(StreamingType type) const;
    /// The key of the boolean field that has to be true for documents to hold this one; "" for none.
    [[nodiscard]] QLatin1StringView keptWhile() const;
    /// Whether it is read at all: what is derived is written for other readers only.
    [[nodiscard]] bool isRead() const;
    /// The value that an absent field stands for; nothing for fields that a document must have.
    [[nodiscard]] std::optional<qint64> valueWhenAbsent() const;

private:
    const FieldFacts *m_facts;
};

} // namespace vantle
