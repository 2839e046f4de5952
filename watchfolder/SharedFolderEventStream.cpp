// SPDX-License-Identifier: MIT
#include "watchfolder/SharedFolderEventStream.h"

#include "base/RunLoop.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace vantle {

namespace {

using Clock = std::chrono::steady_clock;

/// What changes when an entry of the folder comes, goes or is renamed, or the folder is another one.
using Stamp = std::array<std::uint64_t, 6>;

std::optional<Stamp> readFromServer(const std::string &folder)
{
    struct statx found = {};
    // NFS would answer from what it has heard up to a minute ago.
    if (statx(AT_FDCWD, folder.c_str(), AT_STATX_FORCE_SYNC, STATX_BASIC_STATS, &found) != 0)
        return std::nullopt;
    return Stamp{found.stx_ino,
                 found.stx_nlink,
                 static_cast<std::uint64_t>(found.stx_mtime.tv_sec),
                 found.stx_mtime.tv_nsec,
                 static_cast<std::uint64_t>(found.stx_ctime.tv_sec),
                 found.stx_ctime.tv_nsec};
}

} // namespace

/// Outlives the stream while the server does not answer.
struct SharedFolderEventStream::State
{
    explicit State(std::string path, Intervals wanted) : folder(std::move(path)), intervals(wanted) {}

    const std::string folder;
    const Intervals intervals;
    std::mutex mutex;
    std::condition_variable wake;
    std::chrono::milliseconds comparison{0};
    bool stopped = false;

    void run(std::optional<Stamp> known, const std::function<void()> &askForScan)
    {
        Clock::time_point lastScan = Clock::now();
        std::unique_lock lock(mutex);
        while (!wake.wait_for(lock, intervals.look, [this] { return stopped; })) {
            const auto interval = std::max(intervals.scan, 10 * comparison);
            lock.unlock();
            const std::optional<Stamp> present = readFromServer(folder);
            const Clock::time_point now = Clock::now();
            if (present != known || now - lastScan >= interval) {
                known = present;
                lastScan = now;
                askForScan();
            }
            lock.lock();
        }
    }
};

SharedFolderEventStream::SharedFolderEventStream(Configuration configuration,
                                                 std::shared_ptr<FileSystemEventStream> events,
                                                 Intervals intervals)
    : m_configuration(std::move(configuration)), m_events(std::move(events)),
      m_state(
          std::make_shared<State>(m_configuration.folder.empty() ? "/" : m_configuration.folder, intervals))
{
}

SharedFolderEventStream::~SharedFolderEventStream()
{
    stop();
}

std::error_code SharedFolderEventStream::start()
{
    m_loop = RunLoop::current();
    if (const std::error_code error = m_events->start())
        return error;
    const auto askForScan = [weak = std::weak_ptr(m_loop), callback = m_configuration.callback,
                             folder = m_state->folder] {
        if (const auto loop = weak.lock())
            loop->post([callback, folder] {
                callback({VRXWatchFolderEvent(folder, 0, MustScanSubDirs | ItemIsDir, 0)});
            });
    };
    try {
        // Known before the first enumeration, which what changes from now on may miss.
        std::thread([state = m_state, known = readFromServer(m_state->folder), askForScan] {
            state->run(known, askForScan);
        }).detach();
    } catch (const std::system_error &error) {
        return error.code();
    }
    return {};
}

void SharedFolderEventStream::stop()
{
    {
        const std::lock_guard lock(m_state->mutex);
        m_state->stopped = true;
    }
    m_state->wake.notify_all();
    m_events->stop();
    if (m_loop)
        m_loop->close();
}

void SharedFolderEventStream::comparisonTook(std::chrono::milliseconds duration)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->comparison = duration;
}

QString SharedFolderEventStream::description() const
{
    return QStringLiteral("%1, and a look at the %2 folder every %3 s for changes by other machines")
        .arg(m_events->description(), m_configuration.fileSystemType)
        .arg(static_cast<double>(m_state->intervals.look.count()) / 1000.0);
}

} // namespace vantle
