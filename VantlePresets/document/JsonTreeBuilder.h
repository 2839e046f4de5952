// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QString>

#include <rapidjson/document.h>

#include <cstring>

namespace vantle::document {

/// Takes the parser's events and builds the tree from them, with what the library's own tree leaves out:
/// numbers that are exact integers of 64 bits stay exact however they are written (9007199254740993.0,
/// 1e18), and a lone low surrogate in an escape is refused. Private to this folder.
class JsonTreeBuilder
{
public:
    /// Without escapes in the text, which is valid UTF-8, no string can hold a surrogate.
    JsonTreeBuilder(rapidjson::Document &tree, bool hasEscapes) : m_tree(tree), m_hasEscapes(hasEscapes) {}

    /// Why an event was refused, "" when none was.
    [[nodiscard]] const QString &refusal() const { return m_refusal; }

    bool Null() { return m_tree.Null(); }
    bool Bool(bool value) { return m_tree.Bool(value); }
    bool Int(int value) { return m_tree.Int(value); }
    bool Uint(unsigned value) { return m_tree.Uint(value); }
    bool Int64(std::int64_t value) { return m_tree.Int64(value); }
    bool Uint64(std::uint64_t value) { return m_tree.Uint64(value); }
    bool Double(double value) { return m_tree.Double(value); }
    bool RawNumber(const char *text, rapidjson::SizeType length, bool copy);
    bool String(const char *text, rapidjson::SizeType length, bool copy)
    {
        return (!m_hasEscapes || isUnicode(text, length)) && m_tree.String(text, length, copy);
    }
    bool StartObject() { return m_tree.StartObject(); }
    bool Key(const char *text, rapidjson::SizeType length, bool copy) { return String(text, length, copy); }
    bool EndObject(rapidjson::SizeType count) { return m_tree.EndObject(count); }
    bool StartArray() { return m_tree.StartArray(); }
    bool EndArray(rapidjson::SizeType count) { return m_tree.EndArray(count); }

private:
    bool isUnicode(const char *text, rapidjson::SizeType length);

    rapidjson::Document &m_tree;
    const bool m_hasEscapes;
    QString m_refusal;
};

} // namespace vantle::document
