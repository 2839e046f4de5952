// SPDX-License-Identifier: MIT
#include "watchfolder/KernelEventTable.h"

#include "watchfolder/VRXWatchFolderEvent.h"

#include <sys/fanotify.h>
#include <sys/inotify.h>

#include <array>

namespace vantle {

static_assert(IN_MODIFY == FAN_MODIFY && IN_ATTRIB == FAN_ATTRIB && IN_CLOSE_WRITE == FAN_CLOSE_WRITE);
static_assert(IN_MOVED_FROM == FAN_MOVED_FROM && IN_MOVED_TO == FAN_MOVED_TO && IN_CREATE == FAN_CREATE);
static_assert(IN_DELETE == FAN_DELETE && IN_DELETE_SELF == FAN_DELETE_SELF && IN_MOVE_SELF == FAN_MOVE_SELF);
static_assert(IN_Q_OVERFLOW == FAN_Q_OVERFLOW && IN_ISDIR == FAN_ONDIR);

namespace {

struct Translation
{
    quint32 kernelEvent;
    quint32 flag;
    bool changesDirectoryTree; // a directory that this happens to has to be scanned
};

constexpr std::array kTranslations = {
    Translation{IN_CREATE, ItemCreated, true},       Translation{IN_DELETE, ItemRemoved, true},
    Translation{IN_MOVED_FROM, ItemRenamed, true},   Translation{IN_MOVED_TO, ItemRenamed, true},
    Translation{IN_MODIFY, ItemModified, false},     Translation{IN_CLOSE_WRITE, ItemModified, false},
    Translation{IN_ATTRIB, ItemInodeMetaMod, false},
};

constexpr quint32 allTranslated()
{
    quint32 events = 0;
    for (const Translation &translation : kTranslations)
        events |= translation.kernelEvent;
    return events;
}

/// These say that a directory itself is gone, or is elsewhere.
constexpr quint32 kSelfEvents = IN_DELETE_SELF | IN_MOVE_SELF;

} // namespace

const quint32 kCreatingEvents = IN_CREATE;
const quint32 kCompletingEvents = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE;
const quint32 kWritingEvents = IN_MODIFY;
const quint32 kArrivingEvents = IN_MOVED_TO;
const quint32 kDepartingEvents = IN_DELETE | IN_MOVED_FROM;

quint32 eventsForRole(WatchRole role)
{
    switch (role) {
    case WatchRole::Folder:
        return allTranslated() | kSelfEvents;
    case WatchRole::Below:
        return allTranslated();
    case WatchRole::Parent:
        return kSelfEvents | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
    case WatchRole::Ancestor:
        return kSelfEvents;
    }
    return 0;
}

bool isDirectoryEvent(quint32 kernelMask)
{
    return (kernelMask & IN_ISDIR) != 0;
}

quint32 eventFlags(quint32 kernelMask)
{
    const bool isDirectory = isDirectoryEvent(kernelMask);
    quint32 flags = isDirectory ? ItemIsDir : ItemIsFile;
    for (const Translation &translation : kTranslations) {
        if ((kernelMask & translation.kernelEvent) == 0)
            continue;
        flags |= translation.flag;
        if (isDirectory && translation.changesDirectoryTree)
            flags |= MustScanSubDirs;
    }
    return flags;
}

} // namespace vantle
