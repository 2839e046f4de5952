// SPDX-License-Identifier: MIT
#pragma once

#include "base/NativePath.h"
#include "watchfolder/ItemFilter.h"
#include "watchfolder/QualityOfService.h"
#include "watchfolder/VRXWatchFolderDelegate.h"
#include "watchfolder/WatchFolderEnvironment.h"
#include "watchfolder/WatchFolderError.h"

#include <atomic>
#include <mutex>

namespace vantle {

class FolderInventory;
class WatchSession;
class WorkingQueue;

/// The inside of a watcher, which outlives it while an operation or a task still runs: what is watched and
/// for whom, and the session from each start to its stop. Thread-safe.
class WatchFolderCore : public std::enable_shared_from_this<WatchFolderCore>
{
public:
    WatchFolderCore(VRXWatchFolder *owner, const QString &path, bool deepWatch,
                    std::chrono::milliseconds latency, ItemFilter filter, WatchFolderEnvironment environment);
    ~WatchFolderCore();
    WatchFolderCore(const WatchFolderCore &) = delete;
    WatchFolderCore &operator=(const WatchFolderCore &) = delete;

    bool start(WatchFolderError *error);
    void stop();

    /// Null while not watching.
    [[nodiscard]] std::shared_ptr<WatchSession> session() const;
    /// The session's; an empty one while not watching.
    [[nodiscard]] std::shared_ptr<FolderInventory> inventory() const;
    [[nodiscard]] std::shared_ptr<VRXWatchFolderDelegate> delegate() const;
    void setDelegate(std::weak_ptr<VRXWatchFolderDelegate> delegate);

    /// The path relative to the folder; none for the folder itself and for what is not in it, is hidden, or
    /// lies deeper than is watched.
    [[nodiscard]] std::optional<std::string> relativePath(std::string_view path) const;
    [[nodiscard]] std::string folderPath() const { return m_isAbsolute && folder.empty() ? "/" : folder; }
    [[nodiscard]] bool folderExists() const;
    [[nodiscard]] unsigned enumerationOptions() const;
    [[nodiscard]] bool shouldIgnore(std::string_view directory, std::string_view name) const
    {
        return !filter.isEmpty() && filter.shouldIgnore(folder + '/' + joinPath(directory, name));
    }

    VRXWatchFolder *const owner;
    const std::string folder; // without a slash at its end
    const bool deepWatch;
    const std::chrono::milliseconds latency;
    const ItemFilter filter;
    const WatchFolderEnvironment environment;

    std::atomic<bool> cancelRequested = false;
    std::atomic<bool> restartWhereWeLeftOff = false;
    // As of the next start; the quality of service as of the first, which makes the queue.
    std::atomic<bool> ignoreSelf = true;
    std::atomic<bool> noticesReplacements = false;
    std::atomic<QualityOfService> qualityOfService = QualityOfService::Utility;
    std::atomic<WatchBackend> wantedBackend = WatchBackend::Automatic;

private:
    [[nodiscard]] bool checkFolder(WatchFolderError *error) const;
    std::shared_ptr<WatchSession> makeSession(WatchFolderError *error);
    void startForceDirectoryEnumerationTimerIfNeeded();

    const QString m_folderText; // as the client wrote it
    const bool m_isAbsolute;

    mutable std::mutex m_delegateMutex;
    std::weak_ptr<VRXWatchFolderDelegate> m_delegate;

    std::mutex m_startStopMutex;           // never held while a callback is waited for
    std::shared_ptr<WorkingQueue> m_queue; // of all sessions, so that no two callbacks overlap
    WatchFolderEnvironment::Timer m_forceTimer;

    mutable std::mutex m_sessionMutex; // written under m_startStopMutex too
    std::shared_ptr<WatchSession> m_session;
};

} // namespace vantle
