// SPDX-License-Identifier: MIT
#include "VantlePresets/model/PresetKeys.h"

#include "VantlePresets/model/PresetFactory.h"

#include <algorithm>
#include <array>
#include <vector>

namespace vantle {
namespace {

/// Names by their length and last byte, in which few of them agree.
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
        const auto &keys = m_keys[bucketOf(key)];
        return std::find(keys.begin(), keys.end(), key) != keys.end();
    }

private:
    static constexpr std::size_t kBuckets = 128;

    [[nodiscard]] static std::size_t bucketOf(std::string_view key)
    {
        return key.empty() ? 0 : (3 * key.size() + static_cast<unsigned char>(key.back())) % kBuckets;
    }

    void add(const Field &field)
    {
        const std::string_view key(field.key().data(), static_cast<std::size_t>(field.key().size()));
        if (field.isRead() && !contains(key))
            m_keys[bucketOf(key)].push_back(key);
    }

    std::array<std::vector<std::string_view>, kBuckets> m_keys;
};

} // namespace

bool isPresetKey(std::string_view key)
{
    static const KeyTable table;
    return table.contains(key);
}

} // namespace vantle
