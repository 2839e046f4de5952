// SPDX-License-Identifier: MIT
#include "watchfolder/WatchFolderCore.h"

#include "watchfolder/NativePath.h"
#include "watchfolder/RunLoop.h"
#include "watchfolder/WatchFolderWalks.h"

#include <QtCore/QCoreApplication>

#include <fcntl.h>

#include <algorithm>
#include <array>

namespace vantle {

namespace {

constexpr std::chrono::seconds forcedCheckInterval{30};
constexpr size_t pathsBetweenCancellationChecks = 200;

// Their servers' changes come without events, or with some of them only.
constexpr std::array unreliableFileSystems = {"smb", "cifs", "AvidUnityISIS"};

void setError(WatchFolderError *error, WatchFolderError::Code code, const char *format, const QString &folder,
              const std::error_code &reason = {})
{
    if (error == nullptr)
        return;
    error->code = code;
    error->description = QString::fromLatin1(format).arg(folder);
    error->reason = reason ? QString::fromStdString(reason.message()) : QString();
}

std::string withoutTrailingSlashes(std::string path)
{
    path.erase(path.find_last_not_of('/') + 1);
    return path;
}

} // namespace

WatchFolderCore::WatchFolderCore(VRXWatchFolder *owner, const QString &path, bool isDeep,
                                 std::chrono::milliseconds streamLatency, ItemFilter itemFilter,
                                 WatchFolderEnvironment environment)
    : folder(withoutTrailingSlashes(nativePath(path))), deepWatch(isDeep), latency(streamLatency),
      filter(std::move(itemFilter)), inventory(folder), m_folderText(path),
      m_isAbsolute(nativePath(path).starts_with('/')), m_owner(owner), m_environment(std::move(environment))
{
}

bool WatchFolderCore::start(WatchFolderError *error)
{
    const std::lock_guard starting(m_startStopMutex);
    if (QCoreApplication::instance())
        RunLoop::main(); // made here, where the caller's thread orders it before the first callback
    bool lostWork = false;
    if (m_queue) {
        m_pendingDirectories.clear();
        lostWork = m_queue->cancelAll();
        m_queue->waitUntilFinished();
    }
    cancelRequested = false;
    if (!checkFolder(error))
        return false;
    startForceDirectoryEnumerationTimerIfNeeded();
    if (!m_queue) {
        const std::lock_guard lock(m_streamMutex);
        m_queue = std::make_shared<WorkingQueue>(qualityOfService);
    }

    if (!stream()) {
        if (!createStream(error))
            return false;
        m_enumerationPending = true;
    }
    if (m_enumerationPending) {
        enqueue(&WatchFolderCore::enumerateFolder);
    } else if (lostWork) {
        m_pendingDirectories.addPathToInventory(folder);
        enqueueNextDirectoryIterationOperation();
    }
    enqueue([](WatchFolderCore &core, const Cancelled &) { core.isWatchingPath = true; });
    return true;
}

bool WatchFolderCore::checkFolder(WatchFolderError *error) const
{
    std::error_code reason = std::make_error_code(std::errc::no_such_file_or_directory);
    const auto state =
        m_isAbsolute ? readFileState(AT_FDCWD, folderPath().c_str(), Follow::Links, reason) : std::nullopt;
    if (!state)
        setError(error, WatchFolderError::FolderNotReachable,
                 "FolderPath not reachable when starting to watch (%1)", m_folderText, reason);
    else if (!state->isDirectory)
        setError(error, WatchFolderError::FolderIsFile, "Item at FolderPath is a file, not a directory (%1)",
                 m_folderText);
    return state && state->isDirectory;
}

bool WatchFolderCore::createStream(WatchFolderError *error)
{
    const auto callback = [weak = weak_from_this()](std::vector<VRXWatchFolderEvent> events) {
        std::erase_if(events, [](const VRXWatchFolderEvent &event) {
            return splitPath(event.nativePath()).name.starts_with('.');
        });
        RunLoop::main()->post([weak, events = std::move(events)] {
            if (const auto core = weak.lock())
                core->handleEvents(events);
        });
    };
    std::error_code reason;
    auto made = m_environment.startStream({.folder = folder, .latency = latency, .callback = callback},
                                          wantedBackend, reason);
    if (!made) {
        setError(error, WatchFolderError::NoEventStream,
                 "WatchFolder Error: Unable to Create FSEventStream (Path '%1')", m_folderText, reason);
        return false;
    }
    m_isIgnoringSelf = made->tellsOwnEvents() && ignoreSelf;
    const std::lock_guard lock(m_streamMutex);
    m_stream = std::move(made);
    m_stopped = std::make_shared<std::atomic<bool>>(false);
    return true;
}

void WatchFolderCore::stop()
{
    std::shared_ptr<WorkingQueue> queue;
    std::shared_ptr<FileSystemEventStream> stopped;
    {
        const std::lock_guard lock(m_streamMutex);
        m_forceTimer.reset();
        queue = m_queue;
        stopped = std::exchange(m_stream, nullptr);
        *m_stopped = true;
    }
    m_pendingDirectories.clear();
    if (stopped)
        stopped->stop();
    if (queue) {
        queue->cancelAll();
        queue->waitUntilFinished();
    }
    isWatchingPath = false;
    m_enumerationPending = false;
    inventory.clear();
}

void WatchFolderCore::cancel()
{
    std::shared_ptr<WorkingQueue> queue;
    {
        const std::lock_guard lock(m_streamMutex);
        queue = m_queue;
    }
    if (queue)
        queue->cancelAll();
}

void WatchFolderCore::flush(std::function<void()> done)
{
    const auto current = stream();
    if (!current)
        return done();
    current->flush([weak = weak_from_this(), done = std::move(done)] {
        // Behind the events on the main thread, then behind their comparisons on the working queue.
        RunLoop::main()->post([weak, done] {
            if (const auto core = weak.lock())
                core->enqueue([done](WatchFolderCore &, const Cancelled &) { done(); });
        });
    });
}

void WatchFolderCore::forceChangesChecking(const std::string &path)
{
    if (!isAtOrBelow(path, folder))
        return;
    m_pendingDirectories.addPathToInventory(path);
    enqueueNextDirectoryIterationOperation();
}

std::shared_ptr<FileSystemEventStream> WatchFolderCore::stream() const
{
    const std::lock_guard lock(m_streamMutex);
    return m_stream;
}

std::shared_ptr<VRXWatchFolderDelegate> WatchFolderCore::delegate() const
{
    const std::lock_guard lock(m_delegateMutex);
    return m_delegate.lock();
}

void WatchFolderCore::setDelegate(std::weak_ptr<VRXWatchFolderDelegate> delegate)
{
    const std::lock_guard lock(m_delegateMutex);
    m_delegate = std::move(delegate);
}

std::optional<std::string> WatchFolderCore::relativePath(std::string_view path) const
{
    if (path.size() <= folder.size() + 1 || !path.starts_with(folder) || path[folder.size()] != '/')
        return std::nullopt;
    const std::string_view relative = path.substr(folder.size() + 1);
    if (hasHiddenComponent(relative) || (!deepWatch && relative.find('/') != std::string_view::npos))
        return std::nullopt;
    return std::string(relative);
}

unsigned WatchFolderCore::enumerationOptions() const
{
    return SkipHiddenFiles | SkipPackageContents | (deepWatch ? 0U : SkipSubdirectoryDescendants);
}

void WatchFolderCore::startForceDirectoryEnumerationTimerIfNeeded()
{
    const auto type = m_environment.fileSystemTypeName(displayPath(folderPath()));
    const bool isUnreliable =
        type && std::any_of(unreliableFileSystems.begin(), unreliableFileSystems.end(),
                            [&type](const char *prefix) { return type->startsWith(QLatin1String(prefix)); });
    const std::lock_guard lock(m_streamMutex);
    if (!isUnreliable || m_forceTimer)
        return;
    m_forceTimer = m_environment.startTimer(forcedCheckInterval, [weak = weak_from_this()] {
        if (const auto core = weak.lock())
            core->forceChangesChecking(core->folder);
    });
}

// On the main thread.
void WatchFolderCore::handleEvents(const std::vector<VRXWatchFolderEvent> &events)
{
    if (!stream())
        return;
    std::vector<ChangedPath> changed;
    for (const VRXWatchFolderEvent &event : events) {
        if (event.nativePath() == folderPath()) {
            if (event.has(MustScanSubDirs | RootChanged))
                m_pendingDirectories.addPathToInventory(folder);
        } else {
            handleFileEvent(event, changed);
        }
    }
    checkChangesAtPaths(std::move(changed));
    enqueueNextDirectoryIterationOperation();
}

void WatchFolderCore::handleFileEvent(const VRXWatchFolderEvent &event, std::vector<ChangedPath> &changed)
{
    auto path = relativePath(event.nativePath());
    if (!path)
        return;
    if (event.has(ItemIsDir)) {
        if (!event.has(MustScanSubDirs | ItemRenamed))
            return;
        if (deepWatch)
            m_pendingDirectories.addPathToInventory(event.nativePath());
    } else if (event.has(ItemFinderInfoMod) && event.has(ItemIsFile)) {
        if (const auto receiver = delegate())
            receiver->watchFolderFileFinderInfoChangedAtURL(m_owner, urlForNativePath(event.nativePath()));
    }
    ChangedPath change{.path = std::move(*path),
                       .cause = m_isIgnoringSelf ? LookCause::foreign : LookCause::look,
                       .existenceOnly = !event.has(ItemIsFile)};
    if (event.has(OwnEvent) && m_isIgnoringSelf) {
        const bool isArrival = event.has(ItemCreated);
        const bool isRemoval = event.has(ItemRemoved) || (event.has(ItemRenamed) && !isArrival);
        change.cause = !isRemoval  ? LookCause::own
                       : isArrival ? LookCause::ownReplacement
                                   : LookCause::ownRemoval;
    }
    changed.push_back(std::move(change));
}

void WatchFolderCore::checkChangesAtPaths(std::vector<ChangedPath> paths, std::function<void()> done)
{
    if (paths.empty() && !done)
        return;
    enqueue([paths = std::move(paths), done = std::move(done)](WatchFolderCore &core,
                                                               const Cancelled &cancelled) {
        ChangeReport report = core.makeReport(cancelled);
        core.performChanges(paths, report);
        if (done && !cancelled)
            done();
    });
}

void WatchFolderCore::enqueue(std::function<void(WatchFolderCore &, const Cancelled &)> operation)
{
    // Under the lock: when stop() has taken the stream away, nothing may come behind what it cancels.
    const std::lock_guard lock(m_streamMutex);
    if (!m_stream)
        return;
    m_queue->add([weak = weak_from_this(), operation = std::move(operation)](const Cancelled &cancelled) {
        if (const auto core = weak.lock())
            operation(*core, cancelled);
    });
}

void WatchFolderCore::enqueueNextDirectoryIterationOperation()
{
    if (!m_pendingDirectories.pendingPathsToInventory().empty())
        enqueue(&WatchFolderCore::enumeratePendingDirectories);
}

// The first enumeration: what it finds is the inventory, and is reported as a whole.
void WatchFolderCore::enumerateFolder(const Cancelled &cancelled)
{
    const auto current = stream();
    if (!current)
        return;
    ChangeReport report = makeReport(cancelled);
    inventory.noteFolder();
    inventory.beginReplacement();
    FirstEnumeration enumeration(*this, current.get(), report);
    walkFolder(folder, {}, enumerationOptions(), enumeration);
    if (enumeration.cancelled())
        return;
    m_enumerationPending = false;
    if (!folderExists())
        return reportUnreachable(report);
    m_unreachable = false;
    const auto ownMeanwhile = inventory.replace(enumeration.takeInventory());
    report.didReload();
    performChanges(ownMeanwhile, report);
}

void WatchFolderCore::enumeratePendingDirectories(const Cancelled &cancelled)
{
    while (const auto path = m_pendingDirectories.dequeueNextPathToInventory()) {
        if (cancelled)
            return;
        ChangeReport report = makeReport(cancelled);
        const size_t begin = std::min(folder.size() + 1, path->size());
        std::string directory = path->substr(begin);
        if (directory.ends_with('/'))
            directory.pop_back();
        enumerateAndPerformChangesAtPath(directory, report);
    }
}

void WatchFolderCore::enumerateAndPerformChangesAtPath(const std::string &directory, ChangeReport &report)
{
    const auto current = stream();
    if (directory.empty())
        inventory.noteFolder();
    ReInventory found(*this, current.get(), report);
    if (deepWatch || directory.empty())
        walkFolder(folder, directory, enumerationOptions(), found);
    if (found.cancelled())
        return;
    performChanges(found.takeDifferences(directory), report);
}

void WatchFolderCore::performChanges(const std::vector<ChangedPath> &paths, ChangeReport &report)
{
    std::vector<std::string> missing;
    for (size_t i = 0; i < paths.size(); ++i) {
        if (i % pathsBetweenCancellationChecks == 0 && report.cancelled())
            return;
        const ChangedPath &changed = paths[i];
        if (shouldIgnore({}, changed.path) && !inventory.has(changed.path))
            continue;
        const Finding finding = inventory.compare(changed);
        if (finding.report == Report::added)
            report.added(changed.path, finding.isDirectory);
        else if (finding.report == Report::updated)
            report.updated(changed.path, finding.isDirectory);
        else if (finding.report == Report::missing)
            missing.push_back(changed.path);
        if (finding.wasDirectory && !finding.isDirectory)
            std::ranges::move(inventory.pathsBelow(changed.path), std::back_inserter(missing));
        if (!finding.wasDirectory && finding.isDirectory && deepWatch)
            m_pendingDirectories.addPathToInventory(folder + '/' + changed.path);
    }
    if (folderExists())
        m_unreachable = false;
    else
        reportUnreachable(report);
    for (const std::string &path : missing) {
        if (report.cancelled())
            return;
        if (const auto removed = inventory.removeIfMissing(path))
            report.removed(path, removed->state.isDirectory);
    }
    report.finish();
}

ChangeReport WatchFolderCore::makeReport(const Cancelled &cancelled) const
{
    auto receiver = delegate();
    const std::lock_guard lock(m_streamMutex);
    return {folder, m_owner, std::move(receiver), cancelled, m_stopped};
}

void WatchFolderCore::reportUnreachable(ChangeReport &report)
{
    if (!std::exchange(m_unreachable, true))
        report.becameUnreachable();
}

bool WatchFolderCore::folderExists() const
{
    std::error_code error;
    const auto state = readFileState(AT_FDCWD, folderPath().c_str(), Follow::Links, error);
    return state ? state->isDirectory : !saysMissing(error);
}

} // namespace vantle
