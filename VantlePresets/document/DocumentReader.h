// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/document/DocumentError.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QUtf8StringView>

#include <memory>
#include <optional>
#include <string_view>

namespace vantle::document {

/// Where a value stands, as a chain up to the root; spelled out only when an error needs it.
struct Place
{
    const Place *parent = nullptr;
    std::string_view key; ///< set for a member
    qsizetype index = -1; ///< set for an array's element

    [[nodiscard]] QString text() const;
};

class ArrayReader;

/// A JSON object of a document. Every query throws DecodingError with the key's place when the key is
/// missing or its value has another type. Of duplicate keys the last one counts; unknown keys are never
/// looked at. A reader must not outlive its Document nor the reader that it came from.
class ObjectReader
{
public:
    ObjectReader(const void *value, Place place);
    ObjectReader(const ObjectReader &) = delete;
    ObjectReader &operator=(const ObjectReader &) = delete;

    /// Any JSON number whose value is exactly an integer of 64 bits: 30, 30.0 and 3e1 are all 30.
    [[nodiscard]] qint64 integer(std::string_view key) const;
    /// As integer(), but nothing when the key is absent or null.
    [[nodiscard]] std::optional<qint64> optionalInteger(std::string_view key) const;
    [[nodiscard]] double number(std::string_view key) const;
    [[nodiscard]] bool boolean(std::string_view key) const;
    [[nodiscard]] QString string(std::string_view key) const;
    /// As string(), but a view that is valid as long as the document.
    [[nodiscard]] QUtf8StringView text(std::string_view key) const;
    /// The string, or nothing when the key is absent or has another type.
    [[nodiscard]] std::optional<QString> stringIfAny(std::string_view key) const;
    [[nodiscard]] ArrayReader array(std::string_view key) const;

    /// Refuses the value of a key for a reason of the caller's.
    [[noreturn]] void fail(std::string_view key, const QString &description) const;

private:
    const void *m_value;
    Place m_place;
};

/// A JSON array of a document; the rules of ObjectReader hold.
class ArrayReader
{
public:
    ArrayReader(const void *value, Place place);
    ArrayReader(const ArrayReader &) = delete;
    ArrayReader &operator=(const ArrayReader &) = delete;

    [[nodiscard]] qsizetype size() const;
    [[nodiscard]] ObjectReader objectAt(qsizetype index) const;
    [[nodiscard]] qint64 integerAt(qsizetype index) const;

private:
    const void *m_value;
    Place m_place;
};

/// The deepest nesting of objects and arrays that is read, the outermost one included.
inline constexpr std::size_t kMaximumDepth = 256;

/// Says which members of objects are kept, wherever they stand; null for all. The others are only checked.
using KeyFilter = bool (*)(std::string_view key);

/// A parsed JSON text.
class Document
{
public:
    /// Reads UTF-8, with or without a byte-order mark. Throws DecodingError with line and column when the
    /// text is not JSON, not UTF-8, holds a lone surrogate, is nested too deep, or goes on behind the
    /// document.
    explicit Document(QByteArrayView text, KeyFilter isKept = nullptr);
    ~Document();
    Document(const Document &) = delete;
    Document &operator=(const Document &) = delete;

    /// The document's outermost object; throws DecodingError when it is something else.
    [[nodiscard]] ObjectReader root() const;

private:
    struct Tree;
    std::unique_ptr<Tree> m_tree;
};

} // namespace vantle::document
