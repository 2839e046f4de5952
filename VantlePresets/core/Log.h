// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/core/LogSink.h"

#include <QtCore/QString>

#include <algorithm>

namespace vantle {

/// Hands the line to the process's log sink. Control characters of the text (a preset's name may hold a
/// line break) are written as "\u000a", so that a line stays one line. Callable from any thread.
void logLine(const QString &line);

/// Whether it is a control character: C0, DEL, C1, line or paragraph separator. Callable from any thread, as
/// those that follow are.
[[nodiscard]] inline bool isControl(QChar c)
{
    return c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

/// Whether the text holds a control character.
[[nodiscard]] inline bool hasControls(const QString &text)
{
    return std::any_of(text.begin(), text.end(), isControl);
}

/// The text with every control character as a \u escape, and so those that turn the direction of what follows
/// (U+202A to U+202E, U+2066 to U+2069): a line shows as what it is.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString escapedControls(const QString &text);

} // namespace vantle
