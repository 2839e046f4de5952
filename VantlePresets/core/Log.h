// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QString>

#include <functional>

namespace vantle {

/// Takes one finished line, without its line break. May be called from any thread, one call at a time.
using LogSink = std::function<void(const QString &line)>;

/// Hands the line to the process's log sink. Control characters of the text (a preset's name may hold a
/// line break) are written as "\u000a", so that a line stays one line. Callable from any thread.
void logLine(const QString &line);

/// Replaces the sink, which is standard output at first; an empty function brings standard output back.
/// Callable from any thread; when it returns, the earlier sink is no longer running.
void setLogSink(LogSink sink);

/// The text with every control character (C0, DEL, C1, line and paragraph separator) as a \u escape.
[[nodiscard]] QString escapedControls(const QString &text);

} // namespace vantle
