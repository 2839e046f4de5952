// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/WatchedDirectories.h"

#include <QtCore/QtGlobal>

// inotify and fanotify number their common events alike, so one table serves both.
namespace vantle {

extern const quint32 creatingEvents;
/// After these nobody has to wait for a writer.
extern const quint32 completingEvents;
extern const quint32 writingEvents;
extern const quint32 arrivingEvents;
/// What these happen to is not where it was.
extern const quint32 departingEvents;
/// These say that a directory itself is gone, or is elsewhere.
extern const quint32 selfEvents;

/// What is watched in a directory of the tree, in the kernel's bits.
extern const quint32 watchedEvents;

/// The same for a directory of any role.
quint32 eventsForRole(WatchRole role);

bool isDirectoryEvent(quint32 kernelMask);

/// The flags of an item's event.
quint32 eventFlags(quint32 kernelMask);

} // namespace vantle
