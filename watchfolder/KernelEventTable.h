// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/WatchedDirectories.h"

#include <QtCore/QtGlobal>

// inotify and fanotify number their common events alike, so one table serves both.
namespace vantle {

extern const quint32 kCreatingEvents;
/// After these nobody has to wait for a writer.
extern const quint32 kCompletingEvents;
extern const quint32 kWritingEvents;
extern const quint32 kArrivingEvents;
/// What these happen to is not where it was.
extern const quint32 kDepartingEvents;
/// What is watched in a directory, in the kernel's bits.
[[nodiscard]] quint32 eventsForRole(WatchRole role);

[[nodiscard]] bool isDirectoryEvent(quint32 kernelMask);

/// The flags of an item's event.
[[nodiscard]] quint32 eventFlags(quint32 kernelMask);

} // namespace vantle
