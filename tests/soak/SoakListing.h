// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/store/PresetsManager.h"

#include <QtCore/QByteArrayList>

namespace vantle::test {

/// A line for each preset in the order of the list: its name, a tab, its document. Without the identifier,
/// which an update does not take over.
inline QByteArrayList listingOf(const PresetsManager &manager)
{
    QByteArrayList lines;
    for (const auto &preset : manager.presets())
        lines.append(preset->name().toUtf8() + '\t' +
                     preset->encoded(document::Format::compact)
                         .replace(preset->uuid().toByteArray(QUuid::WithoutBraces), "ID"));
    return lines;
}

} // namespace vantle::test
