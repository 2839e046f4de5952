// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"

#include <QtCore/QStringList>

namespace vantle::advice {

/// How many letters have to be added, left out, replaced or swapped with the next to turn one into the other.
[[nodiscard]] VANTLE_PRESETS_EXPORT qsizetype lettersBetween(QStringView a, QStringView b);

/// The choice that lettersBetween() says is nearest, case aside; the first of several. "" when even that
/// one has little in common with the text.
[[nodiscard]] QString nearestText(QStringView text, const QStringList &choices);

} // namespace vantle::advice
