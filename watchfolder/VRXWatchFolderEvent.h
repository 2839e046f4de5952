// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/Export.h"

#include <QtCore/QString>

#include <string>
#include <string_view>

namespace vantle {

/// The flags of an event, the same for every event source.
enum WatchFolderEventFlag : quint32 {
    MustScanSubDirs = 0x1, ///< what lies below the path must be read again
    UserDropped = 0x2,     ///< events were dropped because they were not fetched in time
    KernelDropped = 0x4,   ///< the kernel's queue overflowed
    EventIdsWrapped = 0x8,
    HistoryDone = 0x10,
    RootChanged = 0x20, ///< the watched folder was removed, moved, replaced, or is back
    Mount = 0x40,
    Unmount = 0x80,
    ItemCreated = 0x100,
    ItemRemoved = 0x200,
    ItemInodeMetaMod = 0x400, ///< mode, times, extended attributes
    ItemRenamed = 0x800,
    ItemModified = 0x1000,
    ItemFinderInfoMod = 0x2000,
    ItemChangeOwner = 0x4000,
    ItemXattrMod = 0x8000,
    ItemIsFile = 0x10000,
    ItemIsDir = 0x20000,
    ItemIsSymlink = 0x40000,
    OwnEvent = 0x80000, ///< this process, and nobody else, caused the event
};

/// One event of a stream: a hint that something happened at a path, with all flags collected in one window.
class VANTLE_WATCHFOLDER_EXPORT VRXWatchFolderEvent
{
public:
    /// See the queries; flags are WatchFolderEventFlag joined.
    VRXWatchFolderEvent(std::string path, quint64 fileID, quint32 flags, quint64 id);

    /// The path as text.
    [[nodiscard]] QString path() const;
    /// The path as the kernel spells it; it need not be UTF-8.
    [[nodiscard]] const std::string &nativePath() const { return m_path; }
    /// The inode number; 0 when the event source does not tell.
    [[nodiscard]] quint64 fileID() const { return m_fileID; }
    /// WatchFolderEventFlag joined.
    [[nodiscard]] quint32 flags() const { return m_flags; }
    /// Rises from event to event of a stream.
    quint64 Id() const { return m_id; }

    /// Whether any of the flags is set.
    [[nodiscard]] bool has(quint32 flag) const { return (m_flags & flag) != 0; }

    /// The names of the set flags, each with a leading blank, in the order of the bits.
    [[nodiscard]] QString itemsFlagsString() const;
    /// The name of one flag with its leading blank; empty for an unknown one.
    static QString stringFromFSEventStreamEventFlag(quint32 flag);

private:
    std::string m_path;
    quint64 m_fileID;
    quint64 m_id;
    quint32 m_flags;
};

} // namespace vantle
