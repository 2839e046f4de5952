// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/Export.h"
#include "watchfolder/FileSystemEventStream.h"

#include <optional>

namespace vantle {

/// What a watcher takes from the system, replaceable one by one.
struct VANTLE_WATCHFOLDER_EXPORT WatchFolderEnvironment
{
    /// Destroying it ends the repetition. It may be destroyed on any thread.
    using Timer = std::shared_ptr<void>;

    /// The name of the file-system type that holds a path.
    std::function<std::optional<QString>(const QString &path)> fileSystemTypeName;
    /// Calls a function on the main thread again and again.
    std::function<Timer(std::chrono::milliseconds interval, std::function<void()> tick)> startTimer;
    /// Makes and starts the event source.
    EventStreamFactory startStream;

    /// The real one.
    static WatchFolderEnvironment system();
};

/// None when the path is longer than 1,024 bytes or nothing is known about its volume. Volumes of the SMB
/// family are "smbfs", "smb2" and "cifs"; one of FUSE is "fuseblk" when it is on a block device.
VANTLE_WATCHFOLDER_EXPORT std::optional<QString> fileSystemTypeName(const QString &path);

/// Whether other machines, or processes behind the kernel's back, may change volumes of a type. False for a
/// type that is not known.
VANTLE_WATCHFOLDER_EXPORT bool isSharedFileSystem(const QString &type);

} // namespace vantle
