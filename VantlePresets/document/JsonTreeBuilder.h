// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/document/DocumentReader.h"

#include <QtCore/QString>

#include <rapidjson/document.h>

#include <array>
#include <cstring>

namespace vantle::document {

/// Takes the parser's events and builds the tree from them, with what the library's own tree leaves out:
/// numbers that are exact integers of 64 bits stay exact however they are written (9007199254740993.0,
/// 1e18), a lone low surrogate in an escape and deep nesting are refused, and members that nobody reads leave
/// nothing behind. Private to this folder.
class JsonTreeBuilder
{
public:
    /// Without escapes in the text, which is valid UTF-8, no string can hold a surrogate.
    JsonTreeBuilder(rapidjson::Document &tree, bool hasEscapes, KeyFilter isKept)
        : m_tree(tree), m_hasEscapes(hasEscapes), m_isKept(isKept)
    {
    }

    /// Why an event was refused, "" when none was.
    [[nodiscard]] const QString &refusal() const { return m_refusal; }

    bool Null() { return isSkipped() || m_tree.Null(); }
    bool Bool(bool value) { return isSkipped() || m_tree.Bool(value); }
    bool Int(int value) { return isSkipped() || m_tree.Int(value); }
    bool Uint(unsigned value) { return isSkipped() || m_tree.Uint(value); }
    bool Int64(std::int64_t value) { return isSkipped() || m_tree.Int64(value); }
    bool Uint64(std::uint64_t value) { return isSkipped() || m_tree.Uint64(value); }
    bool Double(double value) { return isSkipped() || m_tree.Double(value); }
    bool RawNumber(const char *text, rapidjson::SizeType length, bool copy);
    bool String(const char *text, rapidjson::SizeType length, bool copy)
    {
        return (!m_hasEscapes || isUnicode(text, length)) &&
               (isSkipped() || m_tree.String(text, length, copy));
    }
    bool Key(const char *text, rapidjson::SizeType length, bool copy)
    {
        if (m_hasEscapes && !isUnicode(text, length))
            return false;
        if (m_skippedFrom != 0)
            return true;
        if (m_isKept && !m_isKept({text, length})) {
            m_skippedFrom = m_depth;
            return true;
        }
        ++m_members[m_depth];
        return m_tree.Key(text, length, copy);
    }
    bool StartObject()
    {
        if (!enter())
            return false;
        m_members[m_depth] = 0;
        return m_skippedFrom != 0 || m_tree.StartObject();
    }
    bool EndObject(rapidjson::SizeType) { return leave() || m_tree.EndObject(m_members[m_depth + 1]); }
    bool StartArray() { return enter() && (m_skippedFrom != 0 || m_tree.StartArray()); }
    bool EndArray(rapidjson::SizeType count) { return leave() || m_tree.EndArray(count); }

private:
    /// Whether a single value is one of those that are not kept.
    bool isSkipped()
    {
        if (m_skippedFrom == 0)
            return false;
        if (m_skippedFrom == m_depth)
            m_skippedFrom = 0; // it was all of the member
        return true;
    }
    bool enter();
    /// Whether what ends here is not kept.
    bool leave()
    {
        --m_depth;
        return isSkipped();
    }
    bool isUnicode(const char *text, rapidjson::SizeType length);

    rapidjson::Document &m_tree;
    const bool m_hasEscapes;
    const KeyFilter m_isKept;
    std::size_t m_depth = 0;       // of the innermost object or array that is open
    std::size_t m_skippedFrom = 0; // the depth of the object with the member that is not kept; 0 for none
    std::array<rapidjson::SizeType, kMaximumDepth + 2> m_members; // that are kept, by depth
    QString m_refusal;
};

} // namespace vantle::document
