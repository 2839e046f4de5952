// SPDX-License-Identifier: MIT
#pragma once

#include "base/RunLoop.h"
#include "watchfolder/FileState.h"
#include "watchfolder/FileSystemEventStream.h"
#include "watchfolder/FolderPresence.h"
#include "watchfolder/KernelQueueReader.h"
#include "watchfolder/PendingEvents.h"
#include "watchfolder/RescanBackoff.h"

#include <atomic>
#include <map>

namespace vantle {

/// An event source over a queue of the kernel's: when events are delivered, what an overflow leads to, and
/// how the folder is found again after it went away.
///
/// arrived() runs on the reader's thread, watchDirectory() and flush() on any, all else on the stream's event
/// loop. Marks are placed under m_marksMutex.
class KernelEventStream final : public FileSystemEventStream
{
public:
    KernelEventStream(Configuration configuration, WatchBackend backend, OpenKernelQueue openQueue);
    ~KernelEventStream() override;

    std::error_code start() override;
    void stop() override;
    std::error_code watchDirectory(const std::string &path, int descriptor) override;
    void flush(std::function<void()> done) override;
    [[nodiscard]] bool tellsOwnEvents() const override { return m_backend == WatchBackend::Fanotify; }
    [[nodiscard]] WatchBackend backend() const override { return m_backend; }
    [[nodiscard]] QString description() const override;

private:
    enum class Urgency { Latency, Now };
    struct Flush
    {
        std::uint64_t drain;
        std::function<void()> done;
    };
    /// What a batch says of the folder itself.
    struct Heard
    {
        bool doubt = false;
        bool overflow = false;
        bool mountsChanged = false;
    };

    std::error_code openFolder();
    std::error_code openFolderLocked();
    void markTheWay(KernelQueue &queue) const;
    [[nodiscard]] bool folderIsAtItsPath() const;
    [[nodiscard]] std::string folderPath() const
    {
        return m_configuration.folder.empty() ? "/" : m_configuration.folder;
    }

    void arrived();
    void deliver(Urgency urgency);
    Heard readBatch();
    void handle(const KernelQueue::Record &record, PendingEvents::Clock::time_point now, Heard &heard);
    void deliverPending(Urgency urgency);
    std::vector<Flush> takeDrainedFlushes();

    void apply(PresenceInput input);
    void reopen();
    void applyLater(std::chrono::milliseconds delay);
    void tellOfMounts();
    void tell(const std::string &path, quint32 flags) const;

    const Configuration m_configuration;
    const WatchBackend m_backend;
    const OpenKernelQueue m_openQueue;
    std::shared_ptr<RunLoop> m_loop;       // set by start
    std::atomic<bool> m_scheduled = false; // a delivery after the latency

    std::mutex m_marksMutex;
    std::shared_ptr<KernelQueue> m_queue;        // replaced under m_marksMutex
    std::unique_ptr<KernelQueueReader> m_reader; // set by start, under m_marksMutex
    std::mutex m_flushMutex;
    std::vector<Flush> m_flushes;

    FolderPresence m_presence = FolderPresence::present;
    unsigned m_lastWait = 0; // only the last one that was begun counts
    PendingEvents m_pending;
    RescanBackoff m_backoff;
    std::optional<FileState> m_folder;
    std::map<std::string, long> m_mounts;
    std::uint64_t m_drained = 0;
    bool m_lookScheduled = false; // at what is pending, although nothing new may come
};

} // namespace vantle
