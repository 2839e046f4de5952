// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"

#include <QtCore/QByteArray>

namespace vantle {

/// The JSON schema (draft 2020-12) of preset files of every kind, as pretty-printed UTF-8 text without a line
/// break at its end: made from the fields of the records. It refuses what can't be read, and of what can be
/// read the values that stand for others (an unknown kind or protocol, an identifier that is no text), which
/// are mistakes in a file that somebody writes. Callable from any thread.
[[nodiscard]] VANTLE_PRESETS_EXPORT QByteArray presetSchema();

} // namespace vantle
