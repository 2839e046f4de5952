// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/Export.h"
#include "watchfolder/QualityOfService.h"

#include <atomic>
#include <functional>
#include <memory>
#include <system_error>

// Not installed: exported for the presets library alone.
namespace vantle {

/// Runs operations one at a time, in order, on a thread of its own. All functions may be called from any
/// thread, the queue's own included: an operation never waits for itself. While no thread is to be had,
/// whoever adds an operation runs it.
class VANTLE_WATCHFOLDER_EXPORT WorkingQueue
{
public:
    /// Says whether the running operation was cancelled; long operations ask now and then.
    using Cancelled = std::atomic<bool>;
    using Operation = std::function<void(const Cancelled &cancelled)>;

    explicit WorkingQueue(QualityOfService qualityOfService);
    /// Cancels, and waits unless it is destroyed by an operation of its own.
    ~WorkingQueue();
    WorkingQueue(const WorkingQueue &) = delete;
    WorkingQueue &operator=(const WorkingQueue &) = delete;

    /// Makes sure of the thread; the error when none is to be had.
    std::error_code ensureThread();
    void add(Operation operation);
    /// Drops what has not begun and asks the running operation to stop. Returns whether there was anything.
    bool cancelAll();
    /// Waits for what was added before the call; returns at once in an operation of this queue.
    void waitUntilFinished();

private:
    struct State;

    std::shared_ptr<State> m_state;
};

} // namespace vantle
