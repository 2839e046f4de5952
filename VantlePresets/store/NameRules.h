// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <functional>

namespace vantle {

/// The rules of preset names; the only user of the Unicode library. Callable from any thread.

/// Equal exactly for names that are the same under Unicode canonical equivalence; case counts.
[[nodiscard]] QString canonicalName(const QString &name);

/// Bytes whose order is the localized, case-insensitive order of names in the process's locale.
[[nodiscard]] QByteArray collationKey(const QString &name);

/// The name without white space and line breaks at both ends.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString trimmedName(const QString &name);

/// Says whether a listed preset has the name.
using NameIsTaken = std::function<bool(const QString &name)>;

/// The wanted name, or else the first free one of "wanted 2", "wanted 3", ...
[[nodiscard]] QString uniqueName(const QString &wanted, const NameIsTaken &isTaken);

/// The name of a preset's copy: "Show" gives "Show copy", "Show copy" gives "Show copy 2", each the first
/// free one from there on. Counting past the largest 64-bit integer stops the process.
[[nodiscard]] QString duplicateName(const QString &source, const NameIsTaken &isTaken);

} // namespace vantle
