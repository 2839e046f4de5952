// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"

#include <QtCore/QString>

#include <functional>

namespace vantle {

/// Takes one finished line, without its line break. May be called from any thread, one call at a time, with
/// no lock held: it may log itself, or wait for other threads that log. What is logged while it runs follows
/// when it returns, on the thread that it runs on.
using LogSink = std::function<void(const QString &line)>;

/// Replaces the process's log sink, which is standard output at first; an empty function brings standard
/// output back. Callable from any thread, from a sink too. When it returns, the earlier sink is not running
/// any more, unless it is the caller: a sink must not wait for a thread that replaces it.
VANTLE_PRESETS_EXPORT void setLogSink(LogSink sink);

} // namespace vantle
