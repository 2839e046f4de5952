// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/ChangeReport.h"
#include "watchfolder/FolderInventory.h"
#include "watchfolder/ItemFilter.h"
#include "watchfolder/NativePath.h"
#include "watchfolder/PendingDirectories.h"
#include "watchfolder/WatchFolderEnvironment.h"
#include "watchfolder/WatchFolderError.h"
#include "watchfolder/WorkingQueue.h"

#include <atomic>

namespace vantle {

/// The inside of a watcher, which outlives it while an operation or a task still runs: routes events, walks
/// and compares. Events are routed on the main thread; everything that touches the folder runs on the working
/// queue.
class WatchFolderCore : public std::enable_shared_from_this<WatchFolderCore>
{
public:
    WatchFolderCore(VRXWatchFolder *owner, const QString &path, bool deepWatch,
                    std::chrono::milliseconds latency, ItemFilter filter, WatchFolderEnvironment environment);

    bool start(WatchFolderError *error);
    void stop();
    void cancel();
    void flush(std::function<void()> done);
    void forceChangesChecking(const std::string &path);
    void checkChangesAtPaths(std::vector<ChangedPath> paths, std::function<void()> done = {});

    std::shared_ptr<FileSystemEventStream> stream() const;
    std::shared_ptr<VRXWatchFolderDelegate> delegate() const;
    void setDelegate(std::weak_ptr<VRXWatchFolderDelegate> delegate);
    /// The path relative to the folder; none for the folder itself and for what is not in it, is hidden, or
    /// lies deeper than is watched.
    std::optional<std::string> relativePath(std::string_view path) const;
    unsigned enumerationOptions() const;
    bool shouldIgnore(std::string_view directory, std::string_view name) const
    {
        return !filter.isEmpty() && filter.shouldIgnore(folder + '/' + joinPath(directory, name));
    }

    const std::string folder; // without a slash at its end
    const bool deepWatch;
    const std::chrono::milliseconds latency;
    const ItemFilter filter;
    FolderInventory inventory;

    std::atomic<bool> isWatchingPath = false;
    std::atomic<bool> cancelRequested = false;
    std::atomic<bool> ignoreSelf = true;
    std::atomic<QualityOfService> qualityOfService = QualityOfService::Utility;
    std::atomic<WatchBackend> wantedBackend = WatchBackend::Automatic;

private:
    using Cancelled = WorkingQueue::Cancelled;
    using Operation = void (WatchFolderCore::*)(const Cancelled &);

    bool checkFolder(WatchFolderError *error) const;
    bool createStream(WatchFolderError *error);
    std::string folderPath() const { return m_isAbsolute && folder.empty() ? "/" : folder; }

    void handleEvents(const std::vector<VRXWatchFolderEvent> &events);
    void handleFileEvent(const VRXWatchFolderEvent &event, std::vector<ChangedPath> &changed);
    void startForceDirectoryEnumerationTimerIfNeeded();

    void enqueue(std::function<void(WatchFolderCore &, const Cancelled &)> operation);
    void enqueueNextDirectoryIterationOperation();
    void enumerateFolder(const Cancelled &cancelled);
    void enumeratePendingDirectories(const Cancelled &cancelled);
    void enumerateAndPerformChangesAtPath(const std::string &directory, ChangeReport &report);
    void performChanges(const std::vector<ChangedPath> &paths, ChangeReport &report);
    ChangeReport makeReport(const Cancelled &cancelled) const;
    void reportUnreachable(ChangeReport &report);
    bool folderExists() const;

    const QString m_folderText; // as the client wrote it
    const bool m_isAbsolute;
    VRXWatchFolder *const m_owner;
    const WatchFolderEnvironment m_environment;
    PendingDirectories m_pendingDirectories;

    mutable std::mutex m_delegateMutex;
    std::weak_ptr<VRXWatchFolderDelegate> m_delegate;

    std::mutex
        m_startStopMutex; // start and stop exclude each other; never held while a callback is waited for
    mutable std::mutex m_streamMutex;
    std::shared_ptr<FileSystemEventStream> m_stream;
    /// Of the present or last stream; operations keep the one they began with.
    std::shared_ptr<std::atomic<bool>> m_stopped = std::make_shared<std::atomic<bool>>(true);
    std::shared_ptr<WorkingQueue> m_queue;
    WatchFolderEnvironment::Timer m_forceTimer;

    std::atomic<bool> m_isIgnoringSelf = false;     // as of the start of the stream
    bool m_unreachable = false;                     // on the working queue only
    std::atomic<bool> m_enumerationPending = false; // the first enumeration was asked for and is not complete
};

} // namespace vantle
