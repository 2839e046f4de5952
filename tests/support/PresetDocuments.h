// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/model/PresetFactory.h"

#include <QtCore/QByteArray>

#include <algorithm>
#include <utility>
#include <vector>

namespace vantle::test {

/// A JSON object whose members are texts in a given order, so that a test can write what our own writer
/// never would: other orders, numbers in other notations, values of the wrong type.
class ObjectText
{
public:
    using Members = std::vector<std::pair<QByteArray, QByteArray>>;

    ObjectText(std::initializer_list<Members::value_type> members) : m_members(members) {}

    /// With the member's value replaced, or the member appended.
    [[nodiscard]] ObjectText with(const QByteArray &key, const QByteArray &value) const
    {
        ObjectText result = *this;
        const auto at = result.find(key);
        if (at == result.m_members.end())
            result.m_members.emplace_back(key, value);
        else
            at->second = value;
        return result;
    }

    [[nodiscard]] ObjectText without(const QByteArray &key) const
    {
        ObjectText result = *this;
        result.m_members.erase(result.find(key));
        return result;
    }

    [[nodiscard]] ObjectText reversed() const
    {
        ObjectText result = *this;
        std::reverse(result.m_members.begin(), result.m_members.end());
        return result;
    }

    [[nodiscard]] QByteArray text() const
    {
        QByteArray result;
        for (const auto &[key, value] : m_members)
            result += (result.isEmpty() ? "\"" : ",\"") + key + "\":" + value;
        return '{' + result + '}';
    }

private:
    Members::iterator find(const QByteArray &key)
    {
        return std::find_if(m_members.begin(), m_members.end(),
                            [&](const auto &m) { return m.first == key; });
    }

    Members m_members;
};

/// A new rendition as our writer writes it.
inline ObjectText videoText()
{
    return {{"codec", R"("H.264")"},
            {"resolution", R"("1920 x 1080")"},
            {"customWidth", "0"},
            {"customHeight", "0"},
            {"frameRate", "30.0"},
            {"bitRate", "4500"},
            {"profile", R"("H264_Main_AutoLevel")"},
            {"pid", "256"}};
}

/// A new track as our writer writes it.
inline ObjectText audioText(bool isDefault = false)
{
    return {{"codec", R"("AAC LC")"},
            {"audioCodecFormatID", "1633772320"},
            {"bitRate", "128"},
            {"language", R"("en")"},
            {"trackName", R"("English")"},
            {"sampleRate", "44100"},
            {"bitsPerSample", "16"},
            {"isDefault", isDefault ? "true" : "false"},
            {"inputChannels", "[0,1]"},
            {"pid", "256"}};
}

inline QByteArray list(const std::vector<ObjectText> &objects)
{
    QByteArray result;
    for (const ObjectText &object : objects)
        result += (result.isEmpty() ? "" : ",") + object.text();
    return '[' + result + ']';
}

/// A document with one rendition and one default track that every kind's class can read: it holds the
/// keys of all of them.
inline ObjectText presetText(const QByteArray &kind)
{
    return {{"type", '"' + kind + '"'},
            {"streamingURL", R"("host")"},
            {"streamingProtocol", R"("RTMPS")"},
            {"portNumber", "443"},
            {"authenticate", "true"},
            {"authenticationLogin", R"("login")"},
            {"authenticationPassword", R"("password")"},
            {"isBackup", "true"},
            {"streamKey", R"("key")"},
            {"application", R"("app")"},
            {"videoSettings", list({videoText()})},
            {"audioSettings", list({audioText(true)})}};
}

/// Reads a document as the class that its kind is known to have.
template <class Preset = VantlePreset>
std::shared_ptr<Preset> decodeAs(const QByteArray &document)
{
    return std::dynamic_pointer_cast<Preset>(decodePreset(document));
}

} // namespace vantle::test
