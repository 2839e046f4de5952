// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/Descriptor.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace vantle {

/// Owns the descriptor of a kernel event queue and the thread that drains it. The thread only moves bytes, so
/// that the queue stays empty however busy the rest of the process is. All functions may be called from any
/// thread.
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
    KernelQueueReader(Descriptor queue, Arrived arrived);
    ~KernelQueueReader();
    KernelQueueReader(const KernelQueueReader &) = delete;
    KernelQueueReader &operator=(const KernelQueueReader &) = delete;

    int descriptor() const { return m_queue.get(); }
    Batch take();
    /// Returns the number of the drain; take() says when it is done.
    std::uint64_t requestDrain();
    /// While held, the thread does not read and the kernel's queue fills: for tests of overflow.
    void setHeld(bool held);

private:
    void run();
    bool readAll();
    void store(const char *bytes, std::size_t size);
    void wake();

    const Descriptor m_queue;
    const Descriptor m_wake;
    const Descriptor m_mounts;
    const Arrived m_arrived;
    std::mutex m_mutex;
    Batch m_batch;
    std::uint64_t m_drainWanted = 0;
    bool m_held = false;
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace vantle
