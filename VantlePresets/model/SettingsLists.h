// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/document/DocumentReader.h"
#include "VantlePresets/document/DocumentWriter.h"

#include <QtCore/QList>

#include <memory>

namespace vantle {

/// Reads a member that is an array of settings objects; throws DecodingError.
template <class Settings>
[[nodiscard]] QList<std::shared_ptr<Settings>> decodeList(const document::ObjectReader &object,
                                                          const char *key)
{
    const document::ArrayReader array = object.array(key);
    QList<std::shared_ptr<Settings>> list;
    list.reserve(array.size());
    for (qsizetype i = 0; i < array.size(); ++i)
        list.append(Settings::decode(array.objectAt(i)));
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
        settings->encode(writer);
    writer.endArray();
}

} // namespace vantle
