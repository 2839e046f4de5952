// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/document/DocumentReader.h"
#include "VantlePresets/document/DocumentWriter.h"
#include "VantlePresets/settings/AudioSettingsPrivate.h"
#include "VantlePresets/settings/VideoSettingsPrivate.h"

#include <QtCore/QList>

#include <memory>
#include <type_traits>

namespace vantle {

/// What reads and writes settings objects of a class.
template <class Settings>
using SettingsPrivate =
    std::conditional_t<std::is_same_v<Settings, VideoSettings>, VideoSettingsPrivate, AudioSettingsPrivate>;

/// Reads a member that is an array of settings objects; throws DecodingError.
template <class Settings>
[[nodiscard]] QList<std::shared_ptr<Settings>> decodeList(const document::ObjectReader &object,
                                                          std::string_view key)
{
    const document::ArrayReader array = object.array(key);
    QList<std::shared_ptr<Settings>> list;
    list.reserve(array.size());
    for (qsizetype i = 0; i < array.size(); ++i)
        list.append(SettingsPrivate<Settings>::decode(array.objectAt(i)));
    return list;
}

/// Writes a member that is an array of settings objects; throws EncodingError.
template <class Settings>
void encodeList(document::DocumentWriter &writer, const char *key,
                const QList<std::shared_ptr<Settings>> &list)
{
    writer.key(key);
    writer.beginArray();
    for (const auto &settings : list)
        SettingsPrivate<Settings>::encode(*settings, writer);
    writer.endArray();
}

} // namespace vantle
