// SPDX-License-Identifier: MIT
#include "watchfolder/WatchSession.h"

#include "base/NativePath.h"
#include "base/RunLoop.h"
#include "watchfolder/SessionWalk.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>

namespace vantle {

namespace {

constexpr std::size_t kPathsBetweenCancellationChecks = 200;
// How often a folder is looked at that can't be read. Nothing is polled while it can.
constexpr std::chrono::milliseconds kClosedFolderPoll{500};

bool canRead(const std::string &directory)
{
    return faccessat(AT_FDCWD, directory.c_str(), R_OK | X_OK, AT_EACCESS) == 0;
}

} // namespace

WatchSession::WatchSession(std::shared_ptr<WatchFolderCore> core, std::shared_ptr<WorkingQueue> queue)
    : inventory(core->folder), m_core(std::move(core)), m_queue(std::move(queue))
{
    m_errorHandler = [weak = std::weak_ptr(m_core)](const QUrl &url, const std::error_code &error) {
        const auto watched = weak.lock();
        const auto delegate = watched ? watched->delegate() : nullptr;
        return !delegate || delegate->shouldContinueFileEnumerationForWatchFolder(watched->owner, error, url);
    };
    inventory.setComparesIdentity(m_core->noticesReplacements);
}

std::error_code WatchSession::openStream()
{
    const auto callback = [weak = weak_from_this(),
                           folder = m_core->folderPath()](std::vector<VRXWatchFolderEvent> events) {
        std::erase_if(events, [&folder](const VRXWatchFolderEvent &event) {
            return event.nativePath() != folder && splitPath(event.nativePath()).name.starts_with('.');
        });
        RunLoop::main()->post([weak, events = std::move(events)] {
            if (const auto session = weak.lock())
                session->handleEvents(events);
        });
    };
    const QString fileSystemType =
        m_core->environment.fileSystemTypeName(displayPath(m_core->folderPath())).value_or(QString());
    m_walkOptions = isSharedFileSystem(fileSystemType) ? AskServer : 0U;
    std::error_code error;
    m_stream = m_core->environment.startStream({.folder = m_core->folder,
                                                .latency = m_core->latency,
                                                .callback = callback,
                                                .fileSystemType = fileSystemType},
                                               m_core->wantedBackend, error);
    if (!m_stream)
        return error ? error : std::make_error_code(std::errc::io_error);
    m_ignoresSelf = m_stream->tellsOwnEvents() && m_core->ignoreSelf;
    return {};
}

void WatchSession::begin(bool lostWork)
{
    if (m_enumerationPending) {
        enqueue(&WatchSession::enumerateFolder);
    } else if (lostWork) {
        m_pendingDirectories.addPathToInventory(m_core->folder);
        enqueueNextDirectoryIterationOperation();
    }
    enqueue([](WatchSession &session, const Cancelled &) { session.m_isWatching = true; });
}

bool WatchSession::dropWork()
{
    const bool hadDirectories = !m_pendingDirectories.pendingPathsToInventory().empty();
    m_pendingDirectories.clear();
    const bool hadOperations = m_queue->cancelAll();
    m_queue->waitUntilFinished();
    return hadDirectories || hadOperations;
}

void WatchSession::end()
{
    *m_ended = true;
    m_pendingDirectories.clear();
    m_stream->stop();
    setErrorHandler({});
}

VRXWatchFolderDelegate::EnumerationErrorHandler WatchSession::errorHandler() const
{
    const std::lock_guard lock(m_errorHandlerMutex);
    return m_errorHandler;
}

void WatchSession::setErrorHandler(VRXWatchFolderDelegate::EnumerationErrorHandler handler)
{
    const std::lock_guard lock(m_errorHandlerMutex);
    m_errorHandler.swap(handler); // the old one goes after the lock
}

void WatchSession::flush(std::function<void()> done)
{
    m_stream->flush([weak = weak_from_this(), done = std::move(done)] {
        // Behind the events on the main thread, then behind their comparisons on the working queue.
        RunLoop::main()->post([weak, done] {
            if (const auto session = weak.lock())
                session->enqueue([done](WatchSession &, const Cancelled &) { done(); });
        });
    });
}

void WatchSession::forceChangesChecking(const std::string &path)
{
    if (!isAtOrBelow(path, m_core->folder))
        return;
    m_pendingDirectories.addPathToInventory(path);
    enqueueNextDirectoryIterationOperation();
}

// On the main thread.
void WatchSession::handleEvents(const std::vector<VRXWatchFolderEvent> &events)
{
    if (*m_ended)
        return;
    std::vector<ChangedPath> changed;
    for (const VRXWatchFolderEvent &event : events) {
        if (event.nativePath() == m_core->folderPath()) {
            if (event.has(MustScanSubDirs | RootChanged))
                m_pendingDirectories.addPathToInventory(m_core->folder);
        } else {
            handleFileEvent(event, changed);
        }
    }
    checkChangesAtPaths(std::move(changed));
    enqueueNextDirectoryIterationOperation();
}

void WatchSession::handleFileEvent(const VRXWatchFolderEvent &event, std::vector<ChangedPath> &changed)
{
    auto path = m_core->relativePath(event.nativePath());
    if (!path)
        return;
    if (event.has(ItemIsDir)) {
        // Its mode, perhaps. Behind the comparisons that may have met a closed door.
        if (event.has(ItemInodeMetaMod) && m_core->deepWatch)
            enqueue([directory = *path](WatchSession &session, const Cancelled &) {
                session.lookAtClosedBelow(directory);
            });
        if (!event.has(MustScanSubDirs | ItemRenamed))
            return;
        if (m_core->deepWatch)
            m_pendingDirectories.addPathToInventory(event.nativePath());
    } else if (event.has(ItemFinderInfoMod) && event.has(ItemIsFile)) {
        if (const auto receiver = m_core->delegate())
            receiver->watchFolderFileFinderInfoChangedAtURL(m_core->owner,
                                                            urlForNativePath(event.nativePath()));
    }
    ChangedPath change{.path = std::move(*path),
                       .cause = m_ignoresSelf ? LookCause::foreign : LookCause::look,
                       .existenceOnly = !event.has(ItemIsFile)};
    if (event.has(OwnEvent) && m_ignoresSelf) {
        const bool isArrival = event.has(ItemCreated);
        const bool isRemoval = event.has(ItemRemoved) || (event.has(ItemRenamed) && !isArrival);
        change.cause = !isRemoval  ? LookCause::own
                       : isArrival ? LookCause::ownReplacement
                                   : LookCause::ownRemoval;
    }
    changed.push_back(std::move(change));
}

void WatchSession::checkChangesAtPaths(std::vector<ChangedPath> paths, std::function<void()> done)
{
    if (paths.empty() && !done)
        return;
    enqueue([paths = std::move(paths), done = std::move(done)](WatchSession &session,
                                                               const Cancelled &cancelled) {
        ChangeReport report = session.makeReport(cancelled);
        session.performChanges(paths, report);
        if (done && !report.cancelled())
            done();
    });
}

void WatchSession::enqueue(std::function<void(WatchSession &, const Cancelled &)> operation)
{
    m_queue->add([weak = weak_from_this(), operation = std::move(operation)](const Cancelled &cancelled) {
        const auto session = weak.lock();
        if (session && !*session->m_ended)
            operation(*session, cancelled);
    });
}

void WatchSession::enqueueNextDirectoryIterationOperation()
{
    if (!m_pendingDirectories.pendingPathsToInventory().empty())
        enqueue(&WatchSession::enumeratePendingDirectories);
}

void WatchSession::afterDelay(std::chrono::milliseconds delay, std::function<void(WatchSession &)> task)
{
    RunLoop::main()->postDelayed(delay, [weak = weak_from_this(), task = std::move(task)] {
        if (const auto session = weak.lock())
            task(*session);
    });
}

// The first enumeration: what it finds is the inventory, and is reported as a whole.
void WatchSession::enumerateFolder(const Cancelled &cancelled)
{
    if (!m_enumerationPending)
        return;
    ChangeReport report = makeReport(cancelled);
    inventory.noteFolder();
    inventory.beginReplacement();
    m_closed.clear();
    SessionWalk enumeration(*m_core, inventory, *m_stream, report, SessionWalk::Purpose::Fill);
    const WalkResult result = enumeration.run({}, m_walkOptions);
    if (enumeration.cancelled())
        return;
    // Half a list must not pass for the whole one.
    if (result == WalkResult::Starved) {
        if (report.shouldContinue(std::make_error_code(std::errc::too_many_files_open), m_core->folder))
            afterDelay(m_backoff.nextDelay(RescanBackoff::Clock::now()),
                       [](WatchSession &session) { session.enqueue(&WatchSession::enumerateFolder); });
        return;
    }
    m_enumerationPending = false;
    if (!m_core->folderExists())
        return reportUnreachable(report);
    m_unreachable = false;
    const std::vector<ChangedPath> ownMeanwhile = inventory.replace(enumeration.takeInventory());
    noteClosed(enumeration.closed());
    report.didReload();
    performChanges(ownMeanwhile, report);
}

void WatchSession::enumeratePendingDirectories(const Cancelled &cancelled)
{
    while (const auto path = m_pendingDirectories.dequeueNextPathToInventory()) {
        if (cancelled)
            return;
        ChangeReport report = makeReport(cancelled);
        const size_t begin = std::min(m_core->folder.size() + 1, path->size());
        std::string directory = path->substr(begin);
        if (directory.ends_with('/'))
            directory.pop_back();
        enumerateAndPerformChangesAtPath(directory, report);
    }
}

void WatchSession::enumerateAndPerformChangesAtPath(const std::string &directory, ChangeReport &report)
{
    const auto begin = std::chrono::steady_clock::now();
    if (directory.empty())
        inventory.noteFolder();
    forgetClosedBelow(directory);
    SessionWalk found(*m_core, inventory, *m_stream, report, SessionWalk::Purpose::Compare);
    const WalkResult result =
        m_core->deepWatch || directory.empty() ? found.run(directory, m_walkOptions) : WalkResult::Complete;
    if (found.cancelled())
        return;
    if (result == WalkResult::Starved)
        afterDelay(m_backoff.nextDelay(RescanBackoff::Clock::now()), [directory](WatchSession &session) {
            session.forceChangesChecking(session.m_core->folder + '/' + directory);
        });
    performChanges(found.takeDifferences(directory), report);
    noteClosed(found.closed());
    if (directory.empty())
        m_stream->comparisonTook(
            std::chrono::ceil<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin));
}

void WatchSession::performChanges(const std::vector<ChangedPath> &paths, ChangeReport &report)
{
    std::vector<std::string> missing;
    std::vector<std::string> closed;
    for (size_t i = 0; i < paths.size(); ++i) {
        if (report.stopped() || (i % kPathsBetweenCancellationChecks == 0 && report.cancelled()))
            return;
        const ChangedPath &changed = paths[i];
        if (m_core->shouldIgnore({}, changed.path) && !inventory.has(changed.path))
            continue;
        const Finding finding = inventory.compare(changed);
        if (finding.report == Report::added)
            report.added(changed.path, finding.isDirectory);
        else if (finding.report == Report::updated)
            report.updated(changed.path, finding.isDirectory);
        else if (finding.report == Report::missing)
            missing.push_back(changed.path);
        else if (finding.isUnreadable)
            closed.push_back(changed.path);
        if (finding.wasDirectory && !finding.isDirectory)
            std::ranges::move(inventory.pathsBelow(changed.path), std::back_inserter(missing));
        if (!finding.wasDirectory && finding.isDirectory && m_core->deepWatch)
            m_pendingDirectories.addPathToInventory(m_core->folder + '/' + changed.path);
    }
    noteClosed(closed);
    if (m_core->folderExists())
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

ChangeReport WatchSession::makeReport(const Cancelled &cancelled) const
{
    return {m_core->folder, m_core->owner, m_core->delegate(), cancelled, m_ended, errorHandler()};
}

void WatchSession::reportUnreachable(ChangeReport &report)
{
    if (!std::exchange(m_unreachable, true))
        report.becameUnreachable();
}

void WatchSession::noteClosed(const std::vector<std::string> &paths)
{
    m_closed.insert(paths.begin(), paths.end());
    if (!m_closed.empty() && !canRead(m_core->folderPath()))
        lookForReadableFolder();
}

void WatchSession::forgetClosedBelow(const std::string &directory)
{
    std::erase_if(m_closed, [&directory](const std::string &path) { return isAtOrBelow(path, directory); });
}

void WatchSession::lookAtClosedBelow(const std::string &directory)
{
    if (std::any_of(m_closed.begin(), m_closed.end(),
                    [&directory](const std::string &path) { return isAtOrBelow(path, directory); }))
        forceChangesChecking(m_core->folder + '/' + directory);
}

// Asked again and again: the modes of ancestors come with no event to those who may not read them.
void WatchSession::lookForReadableFolder()
{
    if (canRead(m_core->folderPath()))
        return forceChangesChecking(m_core->folder);
    if (m_looksForReadableFolder.exchange(true))
        return;
    afterDelay(kClosedFolderPoll, [](WatchSession &session) {
        session.m_looksForReadableFolder = false;
        session.enqueue([](WatchSession &queued, const Cancelled &) { queued.lookForReadableFolder(); });
    });
}

} // namespace vantle
