// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"

#include <QtCore/QStringList>

namespace vantle {

/// The machine-wide data directories, best first: /var/lib, the state that all users of a machine share.
[[nodiscard]] VANTLE_PRESETS_EXPORT QStringList machineDataDirectories();

/// "<data directory>/Orvalle/Streaming Presets".
[[nodiscard]] VANTLE_PRESETS_EXPORT QString presetsFolderPath(const QString &dataDirectory);

/// Makes the folder and its parents if nothing is at its path. Throws std::system_error.
void ensureFolder(const QString &path);

/// "; members of ..." with the command that makes the user one, when the folder, or a parent, is closed to
/// the user but open to its group; "" otherwise. Callable from any thread.
[[nodiscard]] QString groupHint(const QString &folder);

} // namespace vantle
