// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/core/LogSink.h"

#include <QtCore/QString>

namespace vantle {

/// Hands the line to the process's log sink. Control characters of the text (a preset's name may hold a
/// line break) are written as "\u000a", so that a line stays one line. Callable from any thread.
void logLine(const QString &line);

/// The text with every control character (C0, DEL, C1, line and paragraph separator) as a \u escape.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString escapedControls(const QString &text);

} // namespace vantle
