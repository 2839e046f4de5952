// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace vantle {

/// Whether any class reads a key of this name, in whatever object; the values of all others are not kept
/// while a preset document is parsed.
[[nodiscard]] inline bool isPresetKey(std::string_view key)
{
    static constexpr auto kKeys = std::to_array<std::string_view>({"type",
                                                                   "id",
                                                                   "videoSettings",
                                                                   "audioSettings",
                                                                   "streamingURL",
                                                                   "portNumber",
                                                                   "streamingProtocol",
                                                                   "authenticate",
                                                                   "application",
                                                                   "streamKey",
                                                                   "authenticationLogin",
                                                                   "authenticationPassword",
                                                                   "isBackup",
                                                                   "codec",
                                                                   "resolution",
                                                                   "customWidth",
                                                                   "customHeight",
                                                                   "frameRate",
                                                                   "bitRate",
                                                                   "profile",
                                                                   "pid",
                                                                   "language",
                                                                   "trackName",
                                                                   "sampleRate",
                                                                   "bitsPerSample",
                                                                   "inputChannels",
                                                                   "isDefault"});
    constexpr std::size_t kLongest = 22;
    // By length, in which few of them agree.
    static constexpr auto kByLength = [] {
        std::array<std::array<std::string_view, 5>, kLongest + 1> table = {};
        std::array<std::size_t, kLongest + 1> counts = {};
        for (const std::string_view name : kKeys)
            table.at(name.size()).at(counts.at(name.size())++) = name;
        return table;
    }();
    if (key.empty() || key.size() > kLongest)
        return false;
    for (const std::string_view name : kByLength[key.size()]) {
        if (name == key)
            return true;
    }
    return false;
}

} // namespace vantle
