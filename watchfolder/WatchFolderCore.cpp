// SPDX-License-Identifier: MIT
#include "watchfolder/WatchFolderCore.h"

#include "base/WorkingQueue.h"
#include "watchfolder/FileState.h"
#include "watchfolder/FolderWalk.h"
#include "watchfolder/WatchSession.h"

#include <fcntl.h>

#include <algorithm>
#include <array>

namespace vantle {

namespace {

constexpr std::chrono::seconds kForcedCheckInterval{30};

// Checked by the forced re-check's timer: a list of its own, narrower than isSharedFileSystem().
constexpr std::array kUnreliableFileSystems = {"smb", "cifs", "AvidUnityISIS"};

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

WatchFolderCore::WatchFolderCore(VRXWatchFolder *watchFolder, const QString &path, bool isDeep,
                                 std::chrono::milliseconds streamLatency, ItemFilter itemFilter,
                                 WatchFolderEnvironment watchEnvironment)
    : owner(watchFolder), folder(withoutTrailingSlashes(nativePath(path))), deepWatch(isDeep),
      latency(streamLatency), filter(std::move(itemFilter)), environment(std::move(watchEnvironment)),
      m_folderText(path), m_isAbsolute(nativePath(path).starts_with('/'))
{
}

WatchFolderCore::~WatchFolderCore() = default;

bool WatchFolderCore::start(WatchFolderError *error)
{
    bool lostWork = false;
    if (const auto present = session())
        lostWork = present->dropWork();

    const std::lock_guard starting(m_startStopMutex);
    cancelRequested = false;
    const auto present = session();
    // The work that was dropped is done again even when the folder is away for a moment.
    if (present)
        present->begin(lostWork);
    if (!checkFolder(error))
        return false;
    startForceDirectoryEnumerationTimerIfNeeded();
    if (present)
        return true;
    const auto made = makeSession(error);
    if (!made)
        return false;
    {
        const std::lock_guard lock(m_sessionMutex);
        m_session = made;
    }
    made->begin(false);
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

std::shared_ptr<WatchSession> WatchFolderCore::makeSession(WatchFolderError *error)
{
    if (!m_queue)
        m_queue = std::make_shared<WorkingQueue>(qualityOfService);
    std::error_code reason = m_queue->ensureThread();
    if (!reason) {
        auto made = std::make_shared<WatchSession>(shared_from_this(), m_queue);
        reason = made->openStream();
        if (!reason)
            return made;
    }
    setError(error, WatchFolderError::NoEventStream,
             "WatchFolder Error: Unable to Create FSEventStream (Path '%1')", m_folderText, reason);
    return nullptr;
}

void WatchFolderCore::stop()
{
    std::shared_ptr<WatchSession> ended;
    std::shared_ptr<WorkingQueue> queue;
    {
        const std::lock_guard stopping(m_startStopMutex);
        m_forceTimer.reset();
        queue = m_queue;
        const std::lock_guard lock(m_sessionMutex);
        ended = std::exchange(m_session, nullptr);
    }
    if (ended)
        ended->end();
    // Another thread may be ending it.
    if (queue)
        queue->waitUntilFinished();
}

std::shared_ptr<WatchSession> WatchFolderCore::session() const
{
    const std::lock_guard lock(m_sessionMutex);
    return m_session;
}

std::shared_ptr<FolderInventory> WatchFolderCore::inventory() const
{
    if (const auto present = session())
        return {present, &present->inventory};
    return std::make_shared<FolderInventory>(folder);
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
    const auto type = environment.fileSystemTypeName(displayPath(folderPath()));
    const bool isUnreliable =
        type && std::any_of(kUnreliableFileSystems.begin(), kUnreliableFileSystems.end(),
                            [&type](const char *prefix) { return type->startsWith(QLatin1String(prefix)); });
    if (!isUnreliable || m_forceTimer)
        return;
    m_forceTimer = environment.startTimer(kForcedCheckInterval, [weak = weak_from_this()] {
        const auto core = weak.lock();
        if (const auto present = core ? core->session() : nullptr)
            present->forceChangesChecking(core->folder);
    });
}

bool WatchFolderCore::folderExists() const
{
    std::error_code error;
    const auto state = readFileState(AT_FDCWD, folderPath().c_str(), Follow::Links, error);
    return state ? state->isDirectory : !saysMissing(error);
}

} // namespace vantle
