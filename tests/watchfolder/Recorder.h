// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/VRXWatchFolder.h"

#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace vantle::test {

/// Writes down each callback as a line ("added a/b"; paths relative to the folder) and replays them on a set
/// of paths that begins with the first inventory.
class Recorder final : public VRXWatchFolderDelegate
{
public:
    explicit Recorder(std::string folder) : m_folder(std::move(folder)) {}

    /// The lines since the last call, without batches.
    std::vector<std::string> takeLines();
    std::vector<std::string> takeBatches();
    bool has(const std::string &line) const;
    bool reloaded() const;
    std::set<std::string> replayed() const;
    /// What contradicts what was reported before: something added twice, updated or removed while unknown.
    std::vector<std::string> contradictions() const;

    void watchFolderFileAddedAtURL(VRXWatchFolder *, const QUrl &url, bool isDirectory) override;
    void watchFolderFileRemovedAtURL(VRXWatchFolder *, const QUrl &url, bool isDirectory) override;
    void watchFolderFileUpdatedAtURL(VRXWatchFolder *, const QUrl &url, bool isDirectory) override;
    void watchFolderAddedURLsUpdatedURLsDeletedURLs(VRXWatchFolder *, const QList<QUrl> &added,
                                                    const QList<QUrl> &updated,
                                                    const QList<QUrl> &deleted) override;
    void watchFolderFileFinderInfoChangedAtURL(VRXWatchFolder *, const QUrl &url) override;
    void watchFolderBecameUnreachable(VRXWatchFolder *) override;
    void watchFolderDidReloadCurrentURLs(VRXWatchFolder *watchFolder) override;
    bool shouldContinueFileEnumerationForWatchFolder(VRXWatchFolder *, const std::error_code &error,
                                                     const QUrl &url) override;

private:
    std::string relative(const QUrl &url) const;
    void record(const std::string &line, const std::string &path, bool fits);

    const std::string m_folder;
    mutable std::mutex m_mutex;
    std::vector<std::string> m_lines;
    std::vector<std::string> m_batches;
    std::vector<std::string> m_contradictions;
    std::set<std::string> m_known;
    bool m_reloaded = false;
};

/// Paths of the inventory, relative to the folder.
std::set<std::string> inventoried(const VRXWatchFolder &watcher);
/// What is really in the folder: all that is not hidden.
std::set<std::string> onDisk(const std::string &folder);

/// Waits until everything that changed before the call has been reported.
bool flushed(VRXWatchFolder &watcher);

/// A watcher with its recorder, started and past its first inventory. Whatever is changed from then on gets a
/// later date than what was there: the file system's clock has gone on.
struct Watching
{
    struct Options
    {
        WatchBackend backend = WatchBackend::Automatic;
        bool deep = true;
        double latency = 0.02;
        bool ignoreSelf = true;
        bool noticesReplacements = false;
        QStringList types = {};
        QStringList extensions = {};
        WatchFolderEnvironment environment = WatchFolderEnvironment::system();
    };

    Watching(const std::string &folder, const Options &options);

    WatchFolderError error;
    std::shared_ptr<Recorder> recorder;
    std::unique_ptr<VRXWatchFolder> watcher;
    bool started = false;
};

/// Why a backend can't run here; empty when it can.
std::string refusal(WatchBackend backend);

} // namespace vantle::test
