// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace vantle {

/// The folder of the component's pictures, "VantlePresets_VantlePresets.bundle": beside the library (or
/// the program that it is linked into), or in the share folder of its install prefix. Looked for at the
/// first call; when it is missing the process stops. Callable from any thread.
[[nodiscard]] const QString &resourceBundlePath();

/// The bytes of a picture in SVG format; empty when the bundle has none of the name. Exported for the editor
/// alone: this header is not installed.
[[nodiscard]] VANTLE_PRESETS_EXPORT QByteArray resourceImage(const QString &name);

} // namespace vantle
