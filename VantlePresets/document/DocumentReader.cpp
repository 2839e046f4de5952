// SPDX-License-Identifier: MIT
#include "VantlePresets/document/DocumentReader.h"

#include "VantlePresets/core/SameBytes.h"
#include "VantlePresets/document/JsonTreeBuilder.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace vantle::document {
namespace {

using rapidjson::Value;

constexpr unsigned kParseFlags = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag |
                                 rapidjson::kParseNumbersAsStringsFlag;

const Value &asValue(const void *value)
{
    return *static_cast<const Value *>(value);
}

const Value *find(const Value &object, std::string_view key)
{
    for (auto member = object.MemberEnd(); member != object.MemberBegin();) {
        --member;
        // Not the library's operator==: under C++20's rules it calls itself without end.
        if (areSameBytes({member->name.GetString(), member->name.GetStringLength()}, key))
            return &member->value;
    }
    return nullptr;
}

QString kindOf(const Value &value)
{
    switch (value.GetType()) {
    case rapidjson::kNullType:
        return QStringLiteral("null");
    case rapidjson::kFalseType:
    case rapidjson::kTrueType:
        return QStringLiteral("a boolean");
    case rapidjson::kObjectType:
        return QStringLiteral("an object");
    case rapidjson::kArrayType:
        return QStringLiteral("an array");
    case rapidjson::kStringType:
        return QStringLiteral("a string");
    case rapidjson::kNumberType:
        return QStringLiteral("a number");
    }
    return QStringLiteral("something unknown");
}

[[noreturn]] void mismatch(const Place &place, const char *expected, const Value &found)
{
    throw DecodingError(
        place.text(),
        QStringLiteral("expected %1, found %2").arg(QLatin1StringView(expected), kindOf(found)));
}

const Value &required(const Value &object, const Place &place)
{
    if (const Value *value = find(object, place.key))
        return *value;
    throw DecodingError(place.text(), QStringLiteral("required key is missing"));
}

qint64 toInteger(const Value &value, const Place &place)
{
    if (value.IsInt64())
        return value.GetInt64();
    if (!value.IsNumber())
        mismatch(place, "an integer", value);
    if (value.GetDouble() == 0) // the builder keeps minus zero as a double, for its sign
        return 0;
    throw DecodingError(
        place.text(), QStringLiteral("expected an integer between -2^63 and 2^63 - 1, found another number"));
}

QUtf8StringView toText(const Value &value)
{
    return {value.GetString(), static_cast<qsizetype>(value.GetStringLength())};
}

/// "line 12, column 7" of a byte offset.
QString lineAndColumn(QByteArrayView text, std::size_t offset)
{
    const QByteArrayView before = text.first(static_cast<qsizetype>(offset));
    const qsizetype lineStart = before.lastIndexOf('\n') + 1;
    const auto line = before.count('\n') + 1;
    const auto column = std::count_if(before.begin() + lineStart, before.end(),
                                      [](char byte) {
                                          return (static_cast<unsigned char>(byte) & 0xC0) !=
                                                 0x80; // the first of a character
                                      }) +
                        1;
    return QStringLiteral("line %1, column %2").arg(line).arg(column);
}

} // namespace

QString Place::text() const
{
    QString before = parent ? parent->text() : QString();
    if (index >= 0)
        return before + QStringLiteral("[%1]").arg(index);
    if (!key.data())
        return before;
    const QString name = QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
    return before.isEmpty() ? name : before + QLatin1Char('.') + name;
}

ObjectReader::ObjectReader(const void *value, Place place) : m_value(value), m_place(place)
{
    if (!asValue(value).IsObject())
        mismatch(m_place, "an object", asValue(value));
}

qint64 ObjectReader::integer(std::string_view key) const
{
    const Place place{&m_place, key};
    return toInteger(required(asValue(m_value), place), place);
}

std::optional<qint64> ObjectReader::optionalInteger(std::string_view key) const
{
    const Value *value = find(asValue(m_value), key);
    if (!value || value->IsNull())
        return std::nullopt;
    return toInteger(*value, {&m_place, key});
}

double ObjectReader::number(std::string_view key) const
{
    const Place place{&m_place, key};
    const Value &value = required(asValue(m_value), place);
    if (!value.IsNumber())
        mismatch(place, "a number", value);
    return value.GetDouble();
}

bool ObjectReader::boolean(std::string_view key) const
{
    const Place place{&m_place, key};
    const Value &value = required(asValue(m_value), place);
    if (!value.IsBool())
        mismatch(place, "a boolean", value);
    return value.GetBool();
}

QString ObjectReader::string(std::string_view key) const
{
    return text(key).toString();
}

QUtf8StringView ObjectReader::text(std::string_view key) const
{
    const Place place{&m_place, key};
    const Value &value = required(asValue(m_value), place);
    if (!value.IsString())
        mismatch(place, "a string", value);
    return toText(value);
}

std::optional<QString> ObjectReader::stringIfAny(std::string_view key) const
{
    const Value *value = find(asValue(m_value), key);
    if (!value || !value->IsString())
        return std::nullopt;
    return toText(*value).toString();
}

ArrayReader ObjectReader::array(std::string_view key) const
{
    const Place place{&m_place, key};
    return {&required(asValue(m_value), place), place};
}

void ObjectReader::fail(std::string_view key, const QString &description) const
{
    throw DecodingError(Place{&m_place, key}.text(), description);
}

ArrayReader::ArrayReader(const void *value, Place place) : m_value(value), m_place(place)
{
    if (!asValue(value).IsArray())
        mismatch(m_place, "an array", asValue(value));
}

qsizetype ArrayReader::size() const
{
    return static_cast<qsizetype>(asValue(m_value).Size());
}

ObjectReader ArrayReader::objectAt(qsizetype index) const
{
    const Value &value = asValue(m_value)[static_cast<rapidjson::SizeType>(index)];
    return {&value, {&m_place, {}, index}};
}

qint64 ArrayReader::integerAt(qsizetype index) const
{
    const Place place{&m_place, {}, index};
    return toInteger(asValue(m_value)[static_cast<rapidjson::SizeType>(index)], place);
}

struct Document::Tree
{
    // Enough for a preset of a few renditions: the library's own first chunk is of a size whose release
    // makes the C library tidy up its heap each time.
    static constexpr std::size_t kBufferSize = 12 << 10;

    alignas(std::max_align_t) std::array<char, kBufferSize> buffer;
    rapidjson::MemoryPoolAllocator<> pool{buffer.data(), buffer.size()};
    rapidjson::Document json{&pool};
};

Document::Document(QByteArrayView text, KeyFilter isKept) : m_tree(new Tree)
{
    const QByteArrayView byteOrderMark("\xEF\xBB\xBF");
    if (text.startsWith(byteOrderMark))
        text = text.sliced(byteOrderMark.size());

    rapidjson::MemoryStream stream(text.data(), static_cast<std::size_t>(text.size()));
    rapidjson::Reader reader;
    JsonTreeBuilder builder(m_tree->json, text.contains('\\'), isKept);
    auto parse = [&](rapidjson::Document &) { return !reader.Parse<kParseFlags>(stream, builder).IsError(); };
    m_tree->json.Populate(parse);

    if (reader.HasParseError()) {
        QString reason = builder.refusal();
        if (reason.isEmpty()) {
            reason = QString::fromLatin1(rapidjson::GetParseError_En(reader.GetParseErrorCode()));
            if (reason.endsWith(QLatin1Char('.')))
                reason.chop(1);
        }
        throw DecodingError(lineAndColumn(text, reader.GetErrorOffset()), reason);
    }
    // The parser takes a NUL byte for the end of the text.
    if (stream.Tell() < static_cast<std::size_t>(text.size()))
        throw DecodingError(lineAndColumn(text, stream.Tell()), QStringLiteral("unexpected NUL byte"));
}

Document::~Document() = default;

ObjectReader Document::root() const
{
    return {&static_cast<const Value &>(m_tree->json), {}};
}

} // namespace vantle::document
