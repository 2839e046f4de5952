// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"

#include <QtCore/QString>

#include <functional>

namespace vantle {

/// Takes one finished line, without its line break. May be called from any thread, one call at a time.
using LogSink = std::function<void(const QString &line)>;

/// Replaces the process's log sink, which is standard output at first; an empty function brings standard
/// output back. Callable from any thread; when it returns, the earlier sink is no longer running.
VANTLE_PRESETS_EXPORT void setLogSink(LogSink sink);

} // namespace vantle
