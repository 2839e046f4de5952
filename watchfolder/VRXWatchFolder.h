// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/Export.h"
#include "watchfolder/OwnChange.h"
#include "watchfolder/QualityOfService.h"
#include "watchfolder/VRXWatchFolderDelegate.h"
#include "watchfolder/VRXWatchFolderItem.h"
#include "watchfolder/WatchFolderEnvironment.h"
#include "watchfolder/WatchFolderError.h"

#include <QtCore/QHash>
#include <QtCore/QSet>
#include <QtCore/QStringList>

#include <mutex>
#include <string>
#include <vector>

namespace vantle {

class WatchFolderCore;

/// Watches one folder and tells its delegate which items appeared, changed or disappeared.
///
/// It keeps an inventory of the folder and compares the file system with it whenever the kernel says that
/// something may have changed; what the delegate hears is the outcome of these comparisons and never a raw
/// event. So nothing is missed when the kernel drops events, and nothing is reported twice. A rename is a
/// removal and an addition. Hidden items (their names begin with a dot) do not exist for it.
///
/// Threads: every function may be called from any thread, and in any callback. Events come on the event loop
/// of the thread that called startWatching, or on the main thread's where that thread runs none; the main
/// thread needs an event loop in any case. Callbacks: see VRXWatchFolderDelegate.
///
/// Own changes: with fanotify, changes that this process makes are not reported while ignoreSelf is set;
/// those of its child processes are. With either backend, changes made through performOwnChange are not. What
/// can't be told (after an overflow of the kernel's queue, or in a directory that was new at the time) is
/// reported.
class VANTLE_WATCHFOLDER_EXPORT VRXWatchFolder final
{
public:
    /// Not deep, one second of latency, no filters.
    explicit VRXWatchFolder(const QString &folderPath, std::weak_ptr<VRXWatchFolderDelegate> delegate = {});
    /// Latency in seconds. Types are MIME type names, extensions come without a dot; an item counts when it
    /// matches either list, and every one does when both are empty.
    VRXWatchFolder(const QString &folderPath, std::weak_ptr<VRXWatchFolderDelegate> delegate, bool deepWatch,
                   double latency, const QStringList &UTTypesFilter, const QStringList &extensionsFilter,
                   WatchFolderEnvironment environment = WatchFolderEnvironment::system());
    /// Stops watching.
    ~VRXWatchFolder();
    VRXWatchFolder(const VRXWatchFolder &) = delete;
    VRXWatchFolder &operator=(const VRXWatchFolder &) = delete;

    /// @{
    /// What is watched, and what of it is looked at.
    [[nodiscard]] QString folderPath() const { return m_folderPath; }
    [[nodiscard]] bool deepWatch() const;
    [[nodiscard]] double latency() const { return m_latency; }
    [[nodiscard]] QStringList UTTypesFilter() const;
    [[nodiscard]] QStringList extensionFilter() const;
    [[nodiscard]] QStringList propertiesToFetch() const;
    [[nodiscard]] unsigned enumerationOptions() const;
    /// @}
    /// True from the first attempt at the inventory until stopWatching.
    [[nodiscard]] bool isWatchingPath() const;

    /// For people and debugging output.
    [[nodiscard]] QString displayName() const;
    /// For people and debugging output.
    void setDisplayName(const QString &name);
    /// Null when it is gone.
    [[nodiscard]] std::shared_ptr<VRXWatchFolderDelegate> delegate() const;
    /// The delegate is held weakly.
    void setDelegate(std::weak_ptr<VRXWatchFolderDelegate> delegate);
    /// Takes effect when watching starts, like setBackend.
    [[nodiscard]] bool ignoreSelf() const;
    /// See the class; set at first.
    void setIgnoreSelf(bool ignore);
    /// Utility makes the working queue give way to other threads. To be set before the first start.
    [[nodiscard]] QualityOfService qualityOfService() const;
    /// See qualityOfService().
    void setQualityOfService(QualityOfService qualityOfService);
    /// Which event source to use; Automatic at first.
    void setBackend(WatchBackend backend);
    /// The one that runs; Automatic while none does.
    [[nodiscard]] WatchBackend backend() const;
    /// Empty while not watching.
    [[nodiscard]] QString streamDescription() const;

    /// Whether an item whose date is unchanged is reported as updated when it is another file, has another
    /// size or another change time: one that was replaced within a tick of the clock, rewritten by a tool
    /// that sets dates back, or whose mode was changed. False at first. To be set before startWatching.
    void setNoticesReplacements(bool notices);

    /// Kept for clients, and without effect: what changed while nobody watched is in the next first
    /// inventory. False at first.
    [[nodiscard]] bool restartWhereWeLeftOff() const;
    /// See restartWhereWeLeftOff().
    void setRestartWhereWeLeftOff(bool restart);

    /// Decides whether an enumeration that met an error goes on. Each start puts one in place that asks the
    /// delegate; empty while not watching.
    [[nodiscard]] VRXWatchFolderDelegate::EnumerationErrorHandler fileEnumerationErrorHandler() const;
    /// Until watching stops; without effect while not watching. Called on the working queue; must not throw.
    /// An empty one goes on after any error.
    void setFileEnumerationErrorHandler(VRXWatchFolderDelegate::EnumerationErrorHandler handler);

    /// Begins to watch and takes the first inventory in the background. False, with the error, when the
    /// folder is missing (1001), is not a directory (1002), or when there is no event source (1003: the
    /// reason says whether watches, descriptors or threads ran out). While watching it only repeats what it
    /// cancels. While descriptors or memory are too short for the first inventory, that is tried again.
    bool startWatching(WatchFolderError *error = nullptr);
    /// Drops pending work, waits for the running callback unless called by it, and empties the inventory.
    /// After it returns no callback begins.
    void stopWatching();
    /// Drops the pending comparisons; what they would have found is found when the items change again. A
    /// first inventory that is dropped is taken by the next startWatching.
    void cancel();
    /// Makes a running enumeration stop early; reset by startWatching.
    [[nodiscard]] bool cancelRequested() const;
    /// See cancelRequested().
    void setCancelRequested(bool requested);

    /// Calls done on the working queue once everything that changed before this call has been reported,
    /// without waiting for the latency to pass. Needs the event loops to run. At once, on this thread, when
    /// not watching; never when watching is stopped, or pending work is dropped, meanwhile.
    void flush(std::function<void()> done);
    /// Announces a change (a write, a rename, a removal) that this process is about to make to the item at an
    /// absolute path, so that it is not reported. See OwnChange.
    [[nodiscard]] OwnChange beginOwnChange(const QString &path);
    /// Runs such a change, with no lock held; whatever is at the path afterwards is this process's own. An
    /// exception of the change goes to the caller.
    void performOwnChange(const QString &path, const std::function<void()> &change);
    /// Compares a directory at or below the folder with the inventory, in the background.
    void forceChangesCheckingAtPath(const QString &path);
    /// Compares the items at absolute paths with the inventory, and not what is in them, in the background.
    /// Then calls done, if given, on the working queue: what is reported afterwards is newer. Never when not
    /// watching, nor when pending work is dropped meanwhile.
    void checkChangesAtPaths(const QSet<QString> &paths, std::function<void()> done = {});

    /// What the inventory knows about an absolute path.
    [[nodiscard]] std::optional<VRXWatchFolderItem> itemAtPath(const QString &path) const;
    /// Whether the inventory has an item at an absolute path.
    [[nodiscard]] bool hasItemAtPath(const QString &path) const;
    /// All items of the inventory, in no order.
    QList<QUrl> URLs() const;
    /// The paths of URLs() in the file system's bytes, for clients that read many files.
    [[nodiscard]] std::vector<std::string> nativePaths() const;
    /// The items by their paths.
    QHash<QString, QUrl> URLsDictionary() const;
    /// The items by their paths.
    [[nodiscard]] QHash<QString, VRXWatchFolderItem> pathToItemsDictionary() const;
    /// True when the filters refuse the item.
    [[nodiscard]] bool shouldIgnoreURL(const QUrl &url) const;

    /// See fileSystemTypeName().
    static std::optional<QString> fsTypeNameFromPath(const QString &path);

private:
    const QString m_folderPath;
    const double m_latency;
    const std::shared_ptr<WatchFolderCore> m_core;
    mutable std::mutex m_nameMutex;
    QString m_displayName = QStringLiteral("Untitled WatchFolder");
};

} // namespace vantle
