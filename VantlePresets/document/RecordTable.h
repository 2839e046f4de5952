// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/document/FieldAccess.h"

#include <array>
#include <type_traits>

namespace vantle {

/// A field of a record: what is known of it, and how its value comes and goes. Record is the class that hosts
/// hold, Data its private data.
template <class Record, class Data>
struct FieldRow : FieldFacts
{
    void (*read)(Data &data, const document::ObjectReader &object, const FieldFacts &field) = nullptr;
    void (*write)(const Data &data, document::DocumentWriter &writer, const FieldFacts &field) = nullptr;
    void (*assign)(Record &record, const Data &other) = nullptr; ///< with the setter, which announces it
    bool Data::*condition = nullptr;                             ///< what keptWhile names
    int readAt = 0;                                              ///< its turn in reading, from 1; 0 is never
    int updateAt = 0; ///< its turn in an update, from 1; 0 is never

    [[nodiscard]] constexpr FieldRow order(int reading, int updating) const
    {
        FieldRow row = *this;
        row.readAt = reading;
        row.updateAt = updating;
        return row;
    }
    [[nodiscard]] constexpr FieldRow keptBy(KindSet set) const
    {
        FieldRow row = *this;
        row.kinds = set;
        return row;
    }
    [[nodiscard]] constexpr FieldRow keptIf(bool Data::*flag, const char *flagKey) const
    {
        FieldRow row = *this;
        row.condition = flag;
        row.keptWhile = QLatin1StringView(flagKey);
        return row;
    }
    [[nodiscard]] constexpr FieldRow range(qint64 least, qint64 greatest) const
    {
        FieldRow row = *this;
        row.minimum = least;
        row.maximum = greatest;
        return row;
    }
    [[nodiscard]] constexpr FieldRow in(const char *name) const
    {
        FieldRow row = *this;
        row.unit = QLatin1StringView(name);
        return row;
    }
    [[nodiscard]] constexpr FieldRow means(const char *text) const
    {
        FieldRow row = *this;
        row.meaning = QLatin1StringView(text);
        return row;
    }
    [[nodiscard]] constexpr FieldRow whenAbsent(qint64 value) const
    {
        FieldRow row = *this;
        row.valueWhenAbsent = value;
        return row;
    }
    [[nodiscard]] constexpr FieldRow secret() const
    {
        FieldRow row = *this;
        row.isSecret = true;
        return row;
    }
    [[nodiscard]] constexpr FieldRow address() const
    {
        FieldRow row = *this;
        row.isAddress = true;
        return row;
    }
    [[nodiscard]] constexpr FieldRow fixed() const
    {
        FieldRow row = *this;
        row.isAssignable = false;
        return row;
    }
};

/// Makes the rows of a record's table.
template <class Record, class Data>
struct FieldRows
{
    using Row = FieldRow<Record, Data>;

    /// A field that the private data hold as a member and a setter stores.
    template <auto Member, auto Setter>
    [[nodiscard]] static constexpr Row field(const char *key, const char *label)
    {
        using T = std::remove_cvref_t<decltype(std::declval<Data &>().*Member)>;
        Row row;
        row.key = QLatin1StringView(key);
        row.label = QLatin1StringView(label);
        row.type = FieldAccess<T>::kType;
        if constexpr (std::is_enum_v<T>)
            row.choices = &FieldAccess<T>::choices;
        row.read = [](Data &data, const document::ObjectReader &object, const FieldFacts &facts) {
            data.*Member = FieldAccess<T>::read(object, facts);
        };
        row.write = [](const Data &data, document::DocumentWriter &writer, const FieldFacts &facts) {
            FieldAccess<T>::write(writer, facts.key.data(), data.*Member);
        };
        row.assign = [](Record &record, const Data &other) { (record.*Setter)(other.*Member); };
        return row;
    }

    /// A field that is written for other readers and never read.
    [[nodiscard]] static constexpr Row derived(const char *key, const char *label, Field::Type type,
                                               decltype(Row::write) write)
    {
        Row row;
        row.key = QLatin1StringView(key);
        row.label = QLatin1StringView(label);
        row.type = type;
        row.write = write;
        row.isAssignable = false;
        row.isRead = false;
        return row;
    }
};

/// The fields of a record, the rows in the order in which they are written. All orders are checked when this
/// is compiled.
template <class Record, class Data, std::size_t Size>
class RecordTable
{
public:
    using Row = FieldRow<Record, Data>;

    constexpr explicit RecordTable(const std::array<Row, Size> &rows)
        : m_rows(rows), m_reading(ordered(&Row::readAt)), m_updating(ordered(&Row::updateAt))
    {
    }

    /// Reads the fields that the data's own document holds; throws DecodingError at the first that can't be.
    void read(Data &data, const document::ObjectReader &object) const
    {
        for (std::size_t i = 0; i < m_reading.count; ++i) {
            const Row &row = m_rows[m_reading.rows[i]];
            if (isKept(row, data))
                row.read(data, object, row);
        }
    }

    /// Writes the fields that the data's own document holds; throws EncodingError.
    void write(const Data &data, document::DocumentWriter &writer) const
    {
        for (const Row &row : m_rows) {
            if (isKept(row, data))
                row.write(data, writer, row);
        }
    }

    /// Assigns the other's values one by one. Whether a field is kept depends on what has been assigned
    /// before it.
    void update(Record &record, const Data &own, const Data &other) const
    {
        for (std::size_t i = 0; i < m_updating.count; ++i) {
            const Row &row = m_rows[m_updating.rows[i]];
            if (!row.isAssignable || isKept(row, own))
                row.assign(record, other);
        }
    }

    /// For hosts, in the order of the rows.
    [[nodiscard]] QList<Field> fields() const
    {
        QList<Field> list;
        list.reserve(static_cast<qsizetype>(Size));
        for (const Row &row : m_rows)
            list.append(Field(row));
        return list;
    }

private:
    struct Order
    {
        std::array<std::size_t, Size> rows{};
        std::size_t count = 0;
    };

    [[nodiscard]] constexpr Order ordered(int Row::*turn) const
    {
        Order order;
        for (std::size_t i = 0; i < Size; ++i)
            order.count += m_rows[i].*turn > 0 ? 1 : 0;
        for (std::size_t at = 0; at < order.count; ++at) {
            std::size_t found = 0;
            while (m_rows.at(found).*turn != static_cast<int>(at) + 1) // past the end: a turn is missing
                ++found;
            order.rows[at] = found;
        }
        return order;
    }

    [[nodiscard]] static bool isKept(const Row &row, const Data &data)
    {
        if (row.condition && !(data.*row.condition))
            return false;
        if constexpr (requires { data.type; })
            return row.kinds.contains(data.type);
        else
            return true;
    }

    std::array<Row, Size> m_rows;
    Order m_reading;
    Order m_updating;
};

template <class Record, class Data, std::size_t Size>
RecordTable(const std::array<FieldRow<Record, Data>, Size> &) -> RecordTable<Record, Data, Size>;

} // namespace vantle
