// SPDX-License-Identifier: MIT
#include "watchfolder/KernelEventStream.h"

#include "watchfolder/KernelEventTable.h"

#include <QDebug>

#include <fcntl.h>
#include <sys/inotify.h>

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace vantle {

namespace {

using std::chrono::milliseconds;

// A folder that is replaced is briefly missing; only one that stays away for this long is reported.
constexpr milliseconds missingGrace{250};
// How often a missing folder is looked for. Nothing is polled while it is there.
constexpr milliseconds missingPoll{500};

} // namespace

KernelEventStream::KernelEventStream(Configuration configuration)
    : m_configuration(std::move(configuration)), m_pending(probeOpenFile)
{
}

KernelEventStream::~KernelEventStream() = default;

std::error_code KernelEventStream::start()
{
    m_loop = RunLoop::current();
    return openFolder();
}

void KernelEventStream::stop()
{
    m_loop->close();
    const std::lock_guard lock(m_marksMutex);
    m_reader.reset();
}

void KernelEventStream::stopIfStarted()
{
    if (m_loop)
        stop();
}

// Opens a new queue, so that whatever the old one had marked or still holds can't confuse: for the start, for
// a folder that is back or was replaced, and after an overflow, when the paths of marks can't be relied on.
std::error_code KernelEventStream::openFolder()
{
    const std::string path = folderPath();
    try {
        const Descriptor folder(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        std::error_code error(errno, std::system_category());
        const auto state =
            folder.isOpen() ? readFileState(AT_FDCWD, path.c_str(), Follow::Links, error) : std::nullopt;
        if (!state)
            return error;

        const std::lock_guard lock(m_marksMutex);
        Descriptor queue = openQueue();
        error.assign(errno, std::system_category());
        if (!queue.isOpen())
            return error;
        if (const auto refused = mark(queue.get(), path, folder.get(), WatchRole::Folder))
            return refused;
        markAncestors(queue.get());
        m_reader = nullptr;
        m_reader = std::make_unique<KernelQueueReader>(std::move(queue), [this] { arrived(); });
        m_drained = 0;
        const std::lock_guard flushLock(m_flushMutex);
        for (Flush &flush : m_flushes)
            flush.drain = m_reader->requestDrain();
        m_folder = state;
        return {};
    } catch (const std::system_error &error) {
        return error.code();
    }
}

// Marks that are refused for lack of rights are left out: such directories are rarely changed.
void KernelEventStream::markAncestors(int queue)
{
    const auto markDirectory = [this, queue](const std::string &path, WatchRole role) {
        const Descriptor directory(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (directory.isOpen())
            mark(queue, path, directory.get(), role);
    };
    char resolved[PATH_MAX];
    if (realpath(folderPath().c_str(), resolved) == nullptr)
        return;
    for (std::string path = resolved; path.size() > 1;) {
        path.resize(std::max<size_t>(path.rfind('/'), 1));
        markDirectory(path, WatchRole::Ancestor);
    }
    // Each place where a name on the way to the folder can be given to something else: the folder's own, and
    // links'.
    for (std::string path = folderPath(); path.size() > 1;) {
        const std::string parent = path.substr(0, std::max<size_t>(path.rfind('/'), 1));
        char target = 0;
        if (path == m_configuration.folder || readlink(path.c_str(), &target, 1) > 0)
            markDirectory(parent, WatchRole::Parent);
        path = parent;
    }
}

quint32 KernelEventStream::eventsForRole(WatchRole role)
{
    switch (role) {
    case WatchRole::Folder:
        return watchedEvents | selfEvents;
    case WatchRole::Below:
        return watchedEvents;
    case WatchRole::Parent:
        return selfEvents | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
    case WatchRole::Ancestor:
        return selfEvents;
    }
    return 0;
}

std::error_code KernelEventStream::watchDirectory(const std::string &path, int descriptor)
{
    const std::lock_guard lock(m_marksMutex);
    if (!m_reader || path == folderPath())
        return {};
    return mark(m_reader->descriptor(), path, descriptor, WatchRole::Below);
}

void KernelEventStream::flush(std::function<void()> done)
{
    const std::lock_guard lock(m_marksMutex);
    const std::lock_guard flushLock(m_flushMutex);
    if (m_reader)
        m_flushes.push_back({m_reader->requestDrain(), std::move(done)});
}

void KernelEventStream::setReaderHeld(bool held)
{
    const std::lock_guard lock(m_marksMutex);
    if (m_reader)
        m_reader->setHeld(held);
}

QString KernelEventStream::description() const
{
    return QStringLiteral("%1 stream of '%2', latency %3 s")
        .arg(backendName(backend()), displayPath(folderPath()))
        .arg(static_cast<double>(m_configuration.latency.count()) / 1000.0);
}

// On the reader's thread.
void KernelEventStream::arrived()
{
    bool flushing = false;
    {
        const std::lock_guard lock(m_flushMutex);
        flushing = !m_flushes.empty();
    }
    if (flushing)
        m_loop->post([this] { deliver(Urgency::Now); });
    else if (!m_scheduled.exchange(true))
        m_loop->postDelayed(m_configuration.latency, [this] { deliver(Urgency::Latency); });
}

void KernelEventStream::deliver(Urgency urgency)
{
    m_scheduled = false;
    readBatch();
    checkFolder(urgency);
    checkOverflow(urgency);
    deliverPending(urgency);
    finishFlushes();
}

void KernelEventStream::finishFlushes()
{
    std::vector<Flush> finished;
    {
        const std::lock_guard lock(m_flushMutex);
        const auto waiting =
            std::stable_partition(m_flushes.begin(), m_flushes.end(),
                                  [this](const Flush &flush) { return flush.drain <= m_drained; });
        std::move(m_flushes.begin(), waiting, std::back_inserter(finished));
        m_flushes.erase(m_flushes.begin(), waiting);
    }
    for (const Flush &flush : finished)
        flush.done();
}

void KernelEventStream::readBatch()
{
    const std::lock_guard lock(m_marksMutex);
    KernelQueueReader::Batch batch = m_reader->take();
    m_drained = batch.drained;
    m_overflowed = m_overflowed || batch.dropped;
    m_folderIsSuspect = m_folderIsSuspect || batch.mountsChanged;
    if (!parse(batch.bytes))
        m_overflowed = true; // what can't be read is as good as dropped
}

// Under m_marksMutex.
void KernelEventStream::handle(const Record &record)
{
    if (record.mask & IN_Q_OVERFLOW) {
        m_overflowed = true;
        return;
    }
    if (record.directory == nullptr)
        return;
    if (record.role == WatchRole::Parent || record.role == WatchRole::Ancestor || record.name.empty()) {
        // Of these only what may take the folder away is asked for, and its mode, which does not matter.
        constexpr quint32 takingAway = IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT | IN_DELETE | IN_MOVE;
        m_folderIsSuspect =
            m_folderIsSuspect || (record.role != WatchRole::Below && (record.mask & takingAway));
        return;
    }
    if (isDirectoryEvent(record.mask) && (record.mask & departingEvents))
        forgetTree(m_reader->descriptor(), joinPath(*record.directory, record.name));
    // The directory of the root is "/" and joins its names without another slash.
    const std::string_view directory = *record.directory;
    m_pending.note(directory == "/" ? std::string_view() : directory, record.name, record.mask, record.own);
}

void KernelEventStream::deliverPending(Urgency urgency)
{
    auto events = m_pending.take(urgency == Urgency::Now);
    if (m_pending.wantsSecondLook())
        arrived();
    if (!events.empty())
        m_configuration.callback(std::move(events));
}

bool KernelEventStream::folderIsAtItsPath() const
{
    std::error_code error;
    const auto state = readFileState(AT_FDCWD, folderPath().c_str(), Follow::Links, error);
    return state && m_folder && state->isDirectory && state->inode == m_folder->inode &&
           state->device == m_folder->device;
}

void KernelEventStream::checkFolder(Urgency urgency)
{
    if (m_waitingForFolder && urgency == Urgency::Now)
        lookForFolder();
    if (!std::exchange(m_folderIsSuspect, false) || m_waitingForFolder || folderIsAtItsPath())
        return;
    if (!openFolder()) {
        folderChanged();
        return;
    }
    m_waitingForFolder = true;
    m_reportedMissing = false;
    if (urgency == Urgency::Now)
        lookForFolder();
    else
        lookForFolderLater(missingGrace);
}

void KernelEventStream::lookForFolderLater(milliseconds delay)
{
    if (!std::exchange(m_lookScheduled, true))
        m_loop->postDelayed(delay, [this] {
            m_lookScheduled = false;
            lookForFolder();
        });
}

void KernelEventStream::lookForFolder()
{
    if (!m_waitingForFolder)
        return;
    const std::error_code error = openFolder();
    if (!error) {
        m_waitingForFolder = false;
        folderChanged();
        return;
    }
    const bool isFirst = !std::exchange(m_reportedMissing, true);
    if (isFirst && !saysMissing(error))
        qWarning().noquote() << "WatchFolder:" << displayPath(folderPath())
                             << QString::fromStdString(error.message());
    // Said again at each look: the folder may have been back for a moment in between, and some of it may have
    // been met.
    if (isFirst || saysMissing(error))
        emitFolderEvent(RootChanged);
    lookForFolderLater(missingPoll);
}

void KernelEventStream::folderChanged()
{
    m_pending.clear();
    m_overflowed = m_rescanScheduled = false;
    emitFolderEvent(RootChanged);
}

void KernelEventStream::checkOverflow(Urgency urgency)
{
    if (std::exchange(m_overflowed, false) && !m_rescanScheduled) {
        m_rescanScheduled = true;
        m_loop->postDelayed(m_backoff.nextDelay(RescanBackoff::Clock::now()), [this] { rescan(); });
    }
    if (urgency == Urgency::Now)
        rescan();
}

void KernelEventStream::rescan()
{
    if (!std::exchange(m_rescanScheduled, false))
        return;
    if (openFolder()) {
        // Gone meanwhile, or out of descriptors: tried again until it works.
        m_waitingForFolder = true;
        m_reportedMissing = false;
        lookForFolderLater(missingPoll);
    }
    emitFolderEvent(MustScanSubDirs | KernelDropped | ItemIsDir);
}

void KernelEventStream::emitFolderEvent(quint32 flags)
{
    m_configuration.callback({VRXWatchFolderEvent(folderPath(), m_folder ? m_folder->inode : 0, flags, 0)});
}

} // namespace vantle
