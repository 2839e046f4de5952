// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/Export.h"

#include <QtCore/QList>
#include <QtCore/QUrl>

#include <functional>
#include <system_error>

namespace vantle {

class VRXWatchFolder;

/// Hears what a folder watcher finds. Every callback is optional.
///
/// Threads: all callbacks run on the watcher's working queue, one at a time and in order, except that
/// watchFolderFileFinderInfoChangedAtURL runs on the main thread. A callback may call any operation of the
/// watcher, stopWatching and its destruction included. The watcher holds its delegate weakly; while a
/// callback runs the delegate can't go away, and a last reference is let go of on the main thread. A callback
/// must not throw: what was still to be reported of its comparison would be lost.
class VANTLE_WATCHFOLDER_EXPORT VRXWatchFolderDelegate
{
public:
    /// Whether an enumeration goes on after an error at an item.
    using EnumerationErrorHandler = std::function<bool(const QUrl &, const std::error_code &)>;

    virtual ~VRXWatchFolderDelegate();

    /// An item appeared. Not sent for what the first inventory finds, nor for a new file that its writer has
    /// not closed.
    virtual void watchFolderFileAddedAtURL(VRXWatchFolder *, const QUrl &, bool /*isDirectory*/) {}
    /// An item is gone.
    virtual void watchFolderFileRemovedAtURL(VRXWatchFolder *, const QUrl &, bool /*isDirectory*/) {}
    /// An item's modification date changed. A rewrite that keeps the date is not reported, unless the
    /// watcher notices replacements.
    virtual void watchFolderFileUpdatedAtURL(VRXWatchFolder *, const QUrl &, bool /*isDirectory*/) {}
    /// Once per comparison that found any change, after the single callbacks.
    virtual void watchFolderAddedURLsUpdatedURLsDeletedURLs(VRXWatchFolder *, const QList<QUrl> & /*added*/,
                                                            const QList<QUrl> & /*updated*/,
                                                            const QList<QUrl> & /*deleted*/)
    {
    }
    /// Not sent by the event sources of Linux, which know no such change.
    virtual void watchFolderFileFinderInfoChangedAtURL(VRXWatchFolder *, const QUrl &) {}
    /// The folder is not at its path any more; once per disappearance, before its items are removed.
    virtual void watchFolderBecameUnreachable(VRXWatchFolder *) {}
    /// The first inventory is complete.
    virtual void watchFolderDidReloadCurrentURLs(VRXWatchFolder *) {}
    /// An enumeration met an error (a directory can't be read, or can't be watched because the user is out of
    /// watches; the folder itself, while descriptors or memory are short, which is tried again and asked
    /// again). False stops the enumeration.
    virtual bool shouldContinueFileEnumerationForWatchFolder(VRXWatchFolder *,
                                                             const std::error_code & /*error*/, const QUrl &)
    {
        return true;
    }
};

} // namespace vantle
