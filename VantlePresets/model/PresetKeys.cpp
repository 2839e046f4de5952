// SPDX-License-Identifier: MIT
#include "VantlePresets/model/PresetKeys.h"

#include "VantlePresets/model/PresetFactory.h"

#include <algorithm>
#include <array>
#include <vector>

namespace vantle {
namespace {

/// Names by their length, in which few of them agree.
class KeyTable
{
public:
    KeyTable()
    {
        for (const StreamingType type : streamingTypes().values()) {
            for (const Field &field : presetFields(type)) {
                if (field.isKept(type))
                    add(field);
            }
        }
        for (const Field &field : VideoSettings::fields())
            add(field);
        for (const Field &field : AudioSettings::fields())
            add(field);
    }

    [[nodiscard]] bool contains(std::string_view key) const
    {
        if (key.size() >= m_keys.size())
            return false;
        const auto &keys = m_keys[key.size()];
        return std::find(keys.begin(), keys.end(), key) != keys.end();
    }

private:
    void add(const Field &field)
    {
        const std::string_view key(field.key().data(), static_cast<std::size_t>(field.key().size()));
        if (field.isRead() && !contains(key))
            m_keys.at(key.size()).push_back(key);
    }

    static constexpr std::size_t kLongest = 63;
    std::array<std::vector<std::string_view>, kLongest + 1> m_keys;
};

} // namespace

bool isPresetKey(std::string_view key)
{
    static const KeyTable table;
    return table.contains(key);
}

} // namespace vantle
