// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/core/ProgrammingFault.h"
#include "VantlePresets/core/SameBytes.h"

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QUtf8StringView>

#include <optional>
#include <span>

namespace vantle {

/// The cases of an enumeration with their display strings, in the enumeration's order. The single source
/// for lists of choices, display texts, and the strings in preset files. Later versions can have more cases.
template <class Enumeration>
struct EnumerationTable
{
    /// A value and its display string.
    struct Case
    {
        Enumeration value;      ///< the case
        QLatin1StringView text; ///< its display string
    };

    const char *unexpectedValue; ///< the fault's text when a value is none of the cases
    std::span<const Case> cases; ///< in the order of the enumeration

    /// In the order of the cases.
    [[nodiscard]] QList<Enumeration> values() const
    {
        QList<Enumeration> result;
        for (const Case &c : cases)
            result.append(c.value);
        return result;
    }

    /// In the order of the cases.
    [[nodiscard]] QList<int> rawValues() const
    {
        QList<int> result;
        for (const Case &c : cases)
            result.append(static_cast<int>(c.value));
        return result;
    }

    /// In the order of the cases.
    [[nodiscard]] QStringList texts() const
    {
        QStringList result;
        for (const Case &c : cases)
            result.append(c.text);
        return result;
    }

    /// Nothing when the number is none of the cases.
    [[nodiscard]] std::optional<Enumeration> fromRawValue(qint64 rawValue) const
    {
        for (const Case &c : cases) {
            if (static_cast<qint64>(c.value) == rawValue)
                return c.value;
        }
        return std::nullopt;
    }

    /// Exact and case-sensitive; the first case with the text.
    [[nodiscard]] std::optional<Enumeration> fromText(QStringView text) const
    {
        for (const Case &c : cases) {
            if (c.text == text)
                return c.value;
        }
        return std::nullopt;
    }

    /// As above. The display strings are ASCII, so that bytes can be compared.
    [[nodiscard]] std::optional<Enumeration> fromText(QUtf8StringView text) const
    {
        const std::string_view bytes(text.data(), static_cast<std::size_t>(text.size()));
        for (const Case &c : cases) {
            if (areSameBytes({c.text.data(), static_cast<std::size_t>(c.text.size())}, bytes))
                return c.value;
        }
        return std::nullopt;
    }

    /// The case's text; a value that is none of the cases stops the process.
    [[nodiscard]] QLatin1StringView text(Enumeration value) const
    {
        for (const Case &c : cases) {
            if (c.value == value)
                return c.text;
        }
        programmingFault(unexpectedValue);
    }
};

} // namespace vantle
