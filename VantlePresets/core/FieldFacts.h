// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/core/Field.h"

#include <initializer_list>
#include <string_view>

namespace vantle {

/// Kinds of presets, a bit for each.
class KindSet
{
public:
    constexpr KindSet() = default;
    constexpr KindSet(std::initializer_list<StreamingType> types)
    {
        for (const StreamingType type : types)
            m_bits |= bitOf(type);
    }

    [[nodiscard]] static constexpr KindSet all()
    {
        KindSet kinds;
        kinds.m_bits = ~0U;
        return kinds;
    }

    [[nodiscard]] constexpr bool contains(StreamingType type) const
    {
        return m_bits == all().m_bits || (m_bits & bitOf(type)) != 0;
    }

private:
    [[nodiscard]] static constexpr unsigned bitOf(StreamingType type)
    {
        constexpr unsigned kBits = 31; // a value that is none of the kinds is in no set but the full one
        const auto number = static_cast<unsigned>(type);
        return number < kBits ? 1U << number : 0U;
    }

    unsigned m_bits = 0;
};

/// The services: presets whose documents name the stream by a key. The one place that tells them from other
/// servers.
inline constexpr KindSet kServiceKinds{StreamingType::youTube, StreamingType::facebook};

/// What a Field tells. See there.
struct FieldFacts
{
    QLatin1StringView key; ///< of a literal, so that a NUL follows
    QLatin1StringView label;
    Field::Type type = Field::Type::text;
    QStringList (*choices)() = nullptr;
    QLatin1StringView meaning;
    QLatin1StringView unit;
    std::optional<qint64> minimum;
    std::optional<qint64> maximum;
    std::optional<qint64> valueWhenAbsent;
    QLatin1StringView keptWhile;
    KindSet kinds = KindSet::all();
    bool isSecret = false;
    bool isAddress = false;
    bool isAssignable = true;
    bool isRead = true;

    [[nodiscard]] constexpr std::string_view keyBytes() const
    {
        return {key.data(), static_cast<std::size_t>(key.size())};
    }
};

} // namespace vantle
