// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/document/FieldAccess.h"
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SettingsLists.h"

namespace vantle {

template <>
struct EnumerationFacts<StreamingType>
{
    static constexpr QLatin1StringView kName{"StreamingType"};
    /// An unknown kind does not make a file unreadable.
    static constexpr std::optional<StreamingType> kWhenUnknown = StreamingType::hls;
    static const EnumerationTable<StreamingType> &table() { return streamingTypes(); }
};

template <>
struct EnumerationFacts<RTMPVantlePreset::StreamingProtocol>
{
    static constexpr QLatin1StringView kName{"StreamingProtocol"};
    /// Nor does an unknown protocol.
    static constexpr std::optional<RTMPVantlePreset::StreamingProtocol> kWhenUnknown =
        RTMPVantlePreset::StreamingProtocol::rtmp;
    static const EnumerationTable<RTMPVantlePreset::StreamingProtocol> &table()
    {
        return streamingProtocols();
    }
};

template <class Settings>
struct FieldAccess<QList<std::shared_ptr<Settings>>>
{
    static constexpr auto kType =
        std::is_same_v<Settings, VideoSettings> ? Field::Type::renditions : Field::Type::tracks;
    using List = QList<std::shared_ptr<Settings>>;

    static List read(const document::ObjectReader &object, const FieldFacts &field)
    {
        return decodeList<Settings>(object, field.keyBytes());
    }
    static void write(document::DocumentWriter &writer, const char *key, const List &list)
    {
        encodeList(writer, key, list);
    }
};

} // namespace vantle
