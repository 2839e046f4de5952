// SPDX-License-Identifier: MIT
#include "tests/watchfolder/Recorder.h"

#include "base/NativePath.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Wait.h"

#include <algorithm>
#include <atomic>
#include <ctime>
#include <utility>

namespace vantle::test {

std::vector<std::string> Recorder::takeLines()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_lines, {});
}

std::vector<std::string> Recorder::takeBatches()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_batches, {});
}

bool Recorder::has(const std::string &line) const
{
    const std::lock_guard lock(m_mutex);
    return std::find(m_lines.begin(), m_lines.end(), line) != m_lines.end();
}

bool Recorder::reloaded() const
{
    const std::lock_guard lock(m_mutex);
    return m_reloaded;
}

std::set<std::string> Recorder::replayed() const
{
    const std::lock_guard lock(m_mutex);
    return m_known;
}

std::vector<std::string> Recorder::contradictions() const
{
    const std::lock_guard lock(m_mutex);
    return m_contradictions;
}

std::string Recorder::relative(const QUrl &url) const
{
    return nativePathOfUrl(url).substr(m_folder.size() + 1);
}

void Recorder::record(const std::string &line, const std::string &path, bool fits)
{
    m_lines.push_back(line + ' ' + path);
    if (!fits)
        m_contradictions.push_back(m_lines.back());
}

void Recorder::watchFolderFileAddedAtURL(VRXWatchFolder *, const QUrl &url, bool)
{
    const std::lock_guard lock(m_mutex);
    record("added", relative(url), m_known.insert(relative(url)).second);
}

void Recorder::watchFolderFileRemovedAtURL(VRXWatchFolder *, const QUrl &url, bool)
{
    const std::lock_guard lock(m_mutex);
    record("removed", relative(url), m_known.erase(relative(url)) == 1);
}

void Recorder::watchFolderFileUpdatedAtURL(VRXWatchFolder *, const QUrl &url, bool)
{
    const std::lock_guard lock(m_mutex);
    record("updated", relative(url), m_known.contains(relative(url)));
}

void Recorder::watchFolderAddedURLsUpdatedURLsDeletedURLs(VRXWatchFolder *, const QList<QUrl> &added,
                                                          const QList<QUrl> &updated,
                                                          const QList<QUrl> &deleted)
{
    const std::lock_guard lock(m_mutex);
    m_batches.push_back(std::to_string(added.size()) + ' ' + std::to_string(updated.size()) + ' ' +
                        std::to_string(deleted.size()));
}

void Recorder::watchFolderFileFinderInfoChangedAtURL(VRXWatchFolder *, const QUrl &url)
{
    const std::lock_guard lock(m_mutex);
    m_lines.push_back("info " + relative(url));
}

void Recorder::watchFolderBecameUnreachable(VRXWatchFolder *)
{
    const std::lock_guard lock(m_mutex);
    m_lines.emplace_back("unreachable");
}

void Recorder::watchFolderDidReloadCurrentURLs(VRXWatchFolder *watchFolder)
{
    const std::lock_guard lock(m_mutex);
    m_known = inventoried(*watchFolder);
    m_reloaded = true;
}

bool Recorder::shouldContinueFileEnumerationForWatchFolder(VRXWatchFolder *, const std::error_code &error,
                                                           const QUrl &)
{
    const std::lock_guard lock(m_mutex);
    m_lines.push_back("error " + error.message());
    return true;
}

std::set<std::string> inventoried(const VRXWatchFolder &watcher)
{
    const size_t prefix = nativePath(watcher.folderPath()).size() + 1;
    std::set<std::string> paths;
    for (const QUrl &url : watcher.URLs())
        paths.insert(nativePathOfUrl(url).substr(prefix));
    return paths;
}

std::set<std::string> onDisk(const std::string &folder)
{
    namespace fs = std::filesystem;
    std::set<std::string> paths;
    std::error_code ignored;
    for (fs::recursive_directory_iterator it(folder, ignored), end; it != end; it.increment(ignored)) {
        if (it->path().filename().string().starts_with('.'))
            it.disable_recursion_pending();
        else
            paths.insert(it->path().string().substr(folder.size() + 1));
    }
    return paths;
}

bool flushed(VRXWatchFolder &watcher)
{
    const auto done = std::make_shared<std::atomic<bool>>(false);
    watcher.flush([done] { *done = true; });
    return waitFor([&done] { return done->load(); });
}

namespace {

/// As files get their dates from it: it stands still for milliseconds.
timespec fileClock()
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return now;
}

} // namespace

Watching::Watching(const std::string &folder, const Options &options)
    : recorder(std::make_shared<Recorder>(folder)),
      watcher(std::make_unique<VRXWatchFolder>(displayPath(folder), recorder, options.deep, options.latency,
                                               options.types, options.extensions, options.environment))
{
    watcher->setBackend(options.backend);
    watcher->setIgnoreSelf(options.ignoreSelf);
    watcher->setNoticesReplacements(options.noticesReplacements);
    const timespec before = fileClock();
    started = watcher->startWatching(&error) && waitFor([this] { return recorder->reloaded(); }) &&
              waitFor([&before] { return fileClock().tv_nsec != before.tv_nsec; });
}

std::string refusal(WatchBackend backend)
{
    const TemporaryFolder folder;
    std::error_code error;
    const auto stream =
        startKernelEventStream({.folder = folder.path(), .callback = [](const auto &) {}}, backend, error);
    return stream ? std::string() : error.message();
}

} // namespace vantle::test
