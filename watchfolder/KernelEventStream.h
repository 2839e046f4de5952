// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/FileState.h"
#include "watchfolder/FileSystemEventStream.h"
#include "watchfolder/KernelQueueReader.h"
#include "watchfolder/PendingEvents.h"
#include "watchfolder/RescanBackoff.h"
#include "watchfolder/RunLoop.h"
#include "watchfolder/WatchedDirectories.h"

#include <atomic>

namespace vantle {

/// What the kernel's event sources have in common: when events are delivered, what an overflow leads to, and
/// how the folder is found again after it went away. A backend opens queues, places marks and reads records.
///
/// Everything runs on the stream's event loop, except that marks are placed from any thread under
/// m_marksMutex.
class KernelEventStream : public FileSystemEventStream
{
public:
    explicit KernelEventStream(Configuration configuration);
    ~KernelEventStream() override;

    std::error_code start() final;
    void stop() final;
    std::error_code watchDirectory(const std::string &path, int descriptor) final;
    void flush(std::function<void()> done) final;
    QString description() const final;

    /// While held, nothing is read and the kernel's queue fills: for tests of overflow.
    void setReaderHeld(bool held);

protected:
    /// What a record says. The directory is null for one that is not watched (any more).
    struct Record
    {
        const std::string *directory = nullptr;
        WatchRole role = WatchRole::Below;
        std::string_view name; // empty for the directory itself
        quint32 mask = 0;
        bool own = false;
    };

    /// A new, empty queue; the old one's marks are void.
    virtual Descriptor openQueue() = 0;
    virtual std::error_code mark(int queue, const std::string &path, int descriptor, WatchRole role) = 0;
    /// The directory and all below it have left the place.
    virtual void forgetTree(int queue, const std::string &path) = 0;
    /// Calls handle() for each record; false when not all could be read. Marks are locked.
    virtual bool parse(std::string_view bytes) = 0;

    void handle(const Record &record);
    /// To be called by the destructors of backends: tasks and the reader use what they override.
    void stopIfStarted();

    /// What is watched for a role, in the kernel's bits.
    static quint32 eventsForRole(WatchRole role);

private:
    enum class Urgency { Latency, Now };
    struct Flush
    {
        std::uint64_t drain;
        std::function<void()> done;
    };

    std::error_code openFolder();
    void markAncestors(int queue);
    bool folderIsAtItsPath() const;
    std::string folderPath() const { return m_configuration.folder.empty() ? "/" : m_configuration.folder; }

    void arrived();
    void deliver(Urgency urgency);
    void readBatch();
    void deliverPending(Urgency urgency);
    void checkFolder(Urgency urgency);
    void lookForFolder();
    void lookForFolderLater(std::chrono::milliseconds delay);
    void folderChanged();
    void checkOverflow(Urgency urgency);
    void rescan();
    void finishFlushes();
    void emitFolderEvent(quint32 flags);

    const Configuration m_configuration;
    std::shared_ptr<RunLoop> m_loop;
    std::atomic<bool> m_scheduled = false;

    std::mutex m_marksMutex;
    std::unique_ptr<KernelQueueReader> m_reader; // replaced under m_marksMutex
    std::mutex m_flushMutex;                     // taken after m_marksMutex when both are
    std::vector<Flush> m_flushes;

    PendingEvents m_pending;
    RescanBackoff m_backoff;
    std::optional<FileState> m_folder;
    std::uint64_t m_drained = 0;
    bool m_folderIsSuspect = false;  // an event said that the folder may have gone
    bool m_waitingForFolder = false; // it was missing at the last look, and the look is repeated
    bool m_reportedMissing = false;  // and that was said
    bool m_lookScheduled = false;
    bool m_overflowed = false; // set by a record, cleared when the rescan is scheduled
    bool m_rescanScheduled = false;
};

} // namespace vantle
