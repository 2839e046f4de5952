// SPDX-License-Identifier: MIT
#pragma once

#include "base/WorkingQueue.h"
#include "watchfolder/ChangeReport.h"
#include "watchfolder/FolderInventory.h"
#include "watchfolder/PendingDirectories.h"
#include "watchfolder/RescanBackoff.h"
#include "watchfolder/WatchFolderCore.h"

#include <set>

namespace vantle {

/// What lasts from one start of a watcher to its stop: the event source, the inventory, what waits to be
/// looked at, and whether it has ended. Routes events on the main thread; everything that touches the folder
/// runs on the watcher's working queue. An operation of an ended session changes and reports nothing that
/// anybody sees.
class WatchSession final : public std::enable_shared_from_this<WatchSession>
{
public:
    WatchSession(std::shared_ptr<WatchFolderCore> core, std::shared_ptr<WorkingQueue> queue);

    /// Makes and starts the event source; the error when that is not possible.
    std::error_code openStream();
    /// Queues the first enumeration while it is not complete; else, when work was dropped, a comparison of
    /// everything.
    void begin(bool lostWork);
    /// Drops what waits and waits for what runs; whether there was anything.
    bool dropWork();
    /// Ends the events; nothing is reported from then on, but for a callback that was about to begin. Waits
    /// for nothing: the queue does (see WatchFolderCore::stop).
    void end();

    void cancel() { m_queue->cancelAll(); }
    void flush(std::function<void()> done);
    void forceChangesChecking(const std::string &path);
    void checkChangesAtPaths(std::vector<ChangedPath> paths, std::function<void()> done = {});

    [[nodiscard]] const FileSystemEventStream &stream() const { return *m_stream; }
    [[nodiscard]] bool isWatchingPath() const { return m_isWatching && !*m_ended; }
    [[nodiscard]] VRXWatchFolderDelegate::EnumerationErrorHandler errorHandler() const;
    void setErrorHandler(VRXWatchFolderDelegate::EnumerationErrorHandler handler);

    FolderInventory inventory;

private:
    using Cancelled = WorkingQueue::Cancelled;

    void handleEvents(const std::vector<VRXWatchFolderEvent> &events);
    void handleFileEvent(const VRXWatchFolderEvent &event, std::vector<ChangedPath> &changed);

    void enqueue(std::function<void(WatchSession &, const Cancelled &)> operation);
    void enqueueNextDirectoryIterationOperation();
    void afterDelay(std::chrono::milliseconds delay, std::function<void(WatchSession &)> task);

    // On the working queue.
    void enumerateFolder(const Cancelled &cancelled);
    void enumeratePendingDirectories(const Cancelled &cancelled);
    void enumerateAndPerformChangesAtPath(const std::string &directory, ChangeReport &report);
    void performChanges(const std::vector<ChangedPath> &paths, ChangeReport &report);
    [[nodiscard]] ChangeReport makeReport(const Cancelled &cancelled) const;
    void reportUnreachable(ChangeReport &report);
    void noteClosed(const std::vector<std::string> &paths);
    void forgetClosedBelow(const std::string &directory);
    void lookAtClosedBelow(const std::string &directory);
    void lookForReadableFolder();

    const std::shared_ptr<WatchFolderCore> m_core;
    const std::shared_ptr<WorkingQueue> m_queue;
    std::shared_ptr<FileSystemEventStream> m_stream; // set by openStream
    bool m_ignoresSelf = false;                      // likewise
    unsigned m_walkOptions = 0;                      // likewise
    const std::shared_ptr<std::atomic<bool>> m_ended = std::make_shared<std::atomic<bool>>(false);
    PendingDirectories m_pendingDirectories;
    std::atomic<bool> m_isWatching = false;
    std::atomic<bool> m_enumerationPending = true; // the first enumeration is not complete

    mutable std::mutex m_errorHandlerMutex;
    VRXWatchFolderDelegate::EnumerationErrorHandler m_errorHandler;

    // On the working queue only.
    bool m_unreachable = false;
    /// What could not be looked at for lack of rights: of it nothing is known until a mode changes.
    std::set<std::string, std::less<>> m_closed;
    RescanBackoff m_backoff; // while descriptors or memory are short

    std::atomic<bool> m_looksForReadableFolder = false; // later, by way of the main thread, which resets it
};

} // namespace vantle
