// SPDX-License-Identifier: MIT
#pragma once

#include "base/Descriptor.h"
#include "watchfolder/KernelQueue.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace vantle {

/// The thread that drains a kernel event queue. It only moves bytes, so that the queue stays empty however
/// busy the rest of the process is, and lasts from the start of watching to its end, so that a queue can be
/// replaced when no thread is to be had. All functions may be called from any thread.
class KernelQueueReader
{
public:
    /// Called on the reader's thread after something has come; must be short.
    using Arrived = std::function<void()>;

    struct Batch
    {
        std::string bytes;
        /// Bytes had to be dropped because nobody fetched them.
        bool dropped = false;
        /// Something was mounted or unmounted.
        bool mountsChanged = false;
        /// Everything that was in the queue when this drain was requested is in this batch or was in an
        /// earlier one.
        std::uint64_t drained = 0;
    };

    /// Throws std::system_error when the process is out of descriptors or threads.
    KernelQueueReader(std::shared_ptr<KernelQueue> queue, Arrived arrived);
    ~KernelQueueReader();
    KernelQueueReader(const KernelQueueReader &) = delete;
    KernelQueueReader &operator=(const KernelQueueReader &) = delete;

    /// Reads another queue from now on. What came from the one before and was not taken is dropped.
    void replaceQueue(std::shared_ptr<KernelQueue> queue);
    /// Ends the thread; may be called more than once, but not on it.
    void stop();
    Batch take();
    /// Returns the number of the drain; take() says when it is done.
    std::uint64_t requestDrain();

private:
    void run();
    bool readAll(const std::shared_ptr<KernelQueue> &queue);
    void store(const std::shared_ptr<KernelQueue> &queue, std::string_view bytes);
    void wake();

    const Descriptor m_wake;
    const Descriptor m_mounts;
    const Arrived m_arrived;
    std::mutex m_mutex;
    std::shared_ptr<KernelQueue> m_queue;
    Batch m_batch;
    std::uint64_t m_drainWanted = 0;
    bool m_stopping = false;
    std::mutex m_stopMutex;
    std::thread m_thread; // joined under m_stopMutex
};

} // namespace vantle
