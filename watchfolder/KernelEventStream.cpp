// SPDX-License-Identifier: MIT
#include "watchfolder/KernelEventStream.h"

#include "base/NativePath.h"
#include "watchfolder/KernelEventTable.h"
#include "watchfolder/WayToFolder.h"

#include <QtCore/QDebug>

#include <fcntl.h>
#include <sys/inotify.h>

#include <algorithm>

namespace vantle {

namespace {

using std::chrono::milliseconds;

// A folder that is replaced is briefly missing; only one that stays away for this long is reported.
constexpr milliseconds kMissingGrace{250};
// How often a missing folder is looked for. Nothing is polled while it is there.
constexpr milliseconds kMissingPoll{500};

} // namespace

KernelEventStream::KernelEventStream(Configuration configuration, WatchBackend backend,
                                     OpenKernelQueue openQueue)
    : m_configuration(std::move(configuration)), m_backend(backend), m_openQueue(std::move(openQueue)),
      m_pending(probeOpenFile)
{
}

KernelEventStream::~KernelEventStream()
{
    stop();
}

std::error_code KernelEventStream::start()
{
    // The first event may come, on another thread, before this returns.
    const std::lock_guard lock(m_marksMutex);
    m_loop = RunLoop::current();
    if (const std::error_code error = openFolderLocked())
        return error;
    try {
        m_reader = std::make_unique<KernelQueueReader>(m_queue, [this] { arrived(); });
    } catch (const std::system_error &error) {
        return error.code();
    }
    return {};
}

void KernelEventStream::stop()
{
    if (m_loop)
        m_loop->close();
    if (m_reader)
        m_reader->stop();
}

std::error_code KernelEventStream::openFolder()
{
    const std::lock_guard lock(m_marksMutex);
    return openFolderLocked();
}

// Opens a new queue, so that whatever the old one had marked or still holds can't confuse: for the start, for
// a folder that is back or was replaced, and after an overflow, when the paths of marks can't be relied on.
// When that fails, the old queue goes on.
std::error_code KernelEventStream::openFolderLocked()
{
    const std::string path = folderPath();
    const Descriptor folder(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    std::error_code error(errno, std::system_category());
    const auto state =
        folder.isOpen() ? readFileState(AT_FDCWD, path.c_str(), Follow::Links, error) : std::nullopt;
    if (!state)
        return error;

    std::shared_ptr<KernelQueue> queue = m_openQueue(error);
    if (!queue)
        return error;
    if (const auto refused = queue->mark(path, folder.get(), WatchRole::Folder))
        return refused;
    markTheWay(*queue);
    if (m_reader)
        m_reader->replaceQueue(queue);
    m_queue = std::move(queue);
    m_folder = state;
    m_mounts = mountsBelow(path);
    return {};
}

// Marks that are refused for lack of rights are left out: such directories are rarely changed.
void KernelEventStream::markTheWay(KernelQueue &queue) const
{
    for (const auto &[path, role] : directoriesOnTheWay(folderPath())) {
        const Descriptor directory(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (directory.isOpen())
            queue.mark(path, directory.get(), role);
    }
}

std::error_code KernelEventStream::watchDirectory(const std::string &path, int descriptor)
{
    const std::lock_guard lock(m_marksMutex);
    return path == folderPath() ? std::error_code() : m_queue->mark(path, descriptor, WatchRole::Below);
}

void KernelEventStream::flush(std::function<void()> done)
{
    const std::lock_guard lock(m_flushMutex);
    m_flushes.push_back({m_reader->requestDrain(), std::move(done)});
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
    const Heard heard = readBatch();
    const std::vector<Flush> flushes = takeDrainedFlushes();
    if (!flushes.empty())
        urgency = Urgency::Now; // whoever waits is answered by this delivery, whatever has caused it
    if (heard.doubt || heard.mountsChanged)
        apply(PresenceInput::doubt);
    if (heard.mountsChanged)
        tellOfMounts();
    if (heard.overflow) {
        // The whole folder is about to be compared, and with it what came before the loss.
        m_pending.dropCompared();
        apply(PresenceInput::overflow);
    }
    if (urgency == Urgency::Now)
        apply(PresenceInput::flush);
    // Found missing just now, since the event that said so was lost: a client that waits is told at once.
    if (urgency == Urgency::Now && m_presence == FolderPresence::missing)
        apply(PresenceInput::flush);
    deliverPending(urgency);
    for (const Flush &flush : flushes)
        flush.done();
}

std::vector<KernelEventStream::Flush> KernelEventStream::takeDrainedFlushes()
{
    const std::lock_guard lock(m_flushMutex);
    const auto waiting = std::stable_partition(
        m_flushes.begin(), m_flushes.end(), [this](const Flush &flush) { return flush.drain <= m_drained; });
    std::vector<Flush> drained(std::make_move_iterator(m_flushes.begin()), std::make_move_iterator(waiting));
    m_flushes.erase(m_flushes.begin(), waiting);
    return drained;
}

KernelEventStream::Heard KernelEventStream::readBatch()
{
    const std::lock_guard lock(m_marksMutex);
    const KernelQueueReader::Batch batch = m_reader->take();
    m_drained = batch.drained;
    Heard heard{.overflow = batch.dropped, .mountsChanged = batch.mountsChanged};
    const auto now = PendingEvents::Clock::now();
    // What can't be read is as good as dropped.
    if (!m_queue->parse(batch.bytes, [this, now, &heard](const auto &record) { handle(record, now, heard); }))
        heard.overflow = true;
    return heard;
}

// Under m_marksMutex.
void KernelEventStream::handle(const KernelQueue::Record &record, PendingEvents::Clock::time_point now,
                               Heard &heard)
{
    if (record.mask & IN_Q_OVERFLOW) {
        heard.overflow = true;
        return;
    }
    if (record.directory == nullptr)
        return;
    if (record.role == WatchRole::Below && record.name.empty() && (record.mask & IN_ATTRIB)) {
        const SplitPath path = splitPath(*record.directory); // fanotify has a directory's mode from itself
        m_pending.note(path.directory, path.name, IN_ATTRIB | IN_ISDIR, record.own, now);
        return;
    }
    if (record.role == WatchRole::Parent || record.role == WatchRole::Ancestor || record.name.empty()) {
        // Of these only what may take the folder away is asked for, and its mode: a folder that can't be read
        // is known to whoever compares.
        constexpr quint32 kTakingAway = IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT | IN_DELETE | IN_MOVE;
        heard.doubt = heard.doubt || (record.role != WatchRole::Below && (record.mask & kTakingAway));
        return;
    }
    if (isDirectoryEvent(record.mask) && (record.mask & kDepartingEvents))
        m_queue->forgetTree(joinPath(*record.directory, record.name));
    // The directory of the root is "/" and joins its names without another slash.
    const std::string_view directory = *record.directory;
    m_pending.note(directory == "/" ? std::string_view() : directory, record.name, record.mask, record.own,
                   now);
}

void KernelEventStream::deliverPending(Urgency urgency)
{
    auto events = m_pending.take(urgency == Urgency::Now, PendingEvents::Clock::now());
    if (const auto delay = m_pending.nextLook(); delay && !std::exchange(m_lookScheduled, true))
        m_loop->postDelayed(
            std::max(m_configuration.latency, std::chrono::ceil<milliseconds>(*delay)), [this] {
                m_lookScheduled = false;
                deliver(Urgency::Latency); // with what came meanwhile: the close of a file, say
            });
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

void KernelEventStream::apply(PresenceInput input)
{
    const PresenceStep step = afterInput(m_presence, input);
    m_presence = step.next;
    if (step.tell == PresenceStep::rootChanged) {
        m_pending.clear();
        tell(folderPath(), RootChanged);
    } else if (step.tell == PresenceStep::eventsLost) {
        tell(folderPath(), MustScanSubDirs | KernelDropped | ItemIsDir);
    }
    switch (step.action) {
    case PresenceStep::rest:
        return;
    case PresenceStep::look:
        if (folderIsAtItsPath())
            return apply(PresenceInput::same);
        return reopen();
    case PresenceStep::reopen:
        return reopen();
    case PresenceStep::waitBriefly:
        return applyLater(kMissingGrace);
    case PresenceStep::waitLong:
        return applyLater(kMissingPoll);
    case PresenceStep::waitForQuiet:
        return applyLater(m_backoff.nextDelay(RescanBackoff::Clock::now()));
    }
}

void KernelEventStream::reopen()
{
    const std::error_code error = openFolder();
    if (!error)
        return apply(PresenceInput::opened);
    if (saysMissing(error))
        return apply(PresenceInput::absent);
    if (m_presence == FolderPresence::missing)
        qWarning().noquote() << "WatchFolder:" << displayPath(folderPath())
                             << QString::fromStdString(error.message());
    apply(PresenceInput::refused);
}

void KernelEventStream::applyLater(milliseconds delay)
{
    m_loop->postDelayed(delay, [this, wait = ++m_lastWait] {
        if (wait == m_lastWait)
            apply(PresenceInput::due);
    });
}

// What is mounted on a directory below, or was there all the time under what is unmounted, is all new.
void KernelEventStream::tellOfMounts()
{
    auto mounts = mountsBelow(folderPath());
    mounts.swap(m_mounts);
    const auto tellOfThoseNotIn = [this](const auto &others, const auto &these, quint32 flag) {
        for (const auto &[path, number] : these) {
            if (const auto other = others.find(path); other == others.end() || other->second != number)
                tell(m_configuration.folder + '/' + path, flag | MustScanSubDirs | ItemIsDir);
        }
    };
    tellOfThoseNotIn(m_mounts, mounts, Unmount);
    tellOfThoseNotIn(mounts, m_mounts, Mount);
}

void KernelEventStream::tell(const std::string &path, quint32 flags) const
{
    const bool isFolder = path == folderPath();
    m_configuration.callback(
        {VRXWatchFolderEvent(path, isFolder && m_folder ? m_folder->inode : 0, flags, 0)});
}

} // namespace vantle
