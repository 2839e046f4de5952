// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"

namespace vantle {

/// Stops the process, in release builds too: writes "Programming fault: <what>" and the caller's file and
/// line to standard error, then aborts. For states that only a mistake in the calling code can bring
/// about (an enumeration value that does not exist, a call from the wrong thread), never for bad input.
/// Callable from any thread.
[[noreturn]] VANTLE_PRESETS_EXPORT void
programmingFault(const char *what, const char *file = __builtin_FILE(), int line = __builtin_LINE()) noexcept;

} // namespace vantle
