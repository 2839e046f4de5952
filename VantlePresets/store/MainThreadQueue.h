// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QObject>

#include <deque>
#include <functional>
#include <mutex>

namespace vantle {

/// Runs tasks from any thread on the thread that the queue lives in, in the order in which they were
/// posted. A burst is worked off in slices of a few milliseconds, between which the event loop does its
/// other work: timers, input, painting. Destroyed with tasks left, it drops them.
class MainThreadQueue : public QObject
{
    Q_OBJECT

public:
    using Task = std::function<void()>;

    /// Callable from any thread.
    void post(Task task);
    /// Runs what has been posted, at once. To be called on the queue's thread.
    void runAll();

private:
    void runSlice();
    Task takeTask();

    std::mutex m_mutex;
    std::deque<Task> m_tasks;   // guarded by m_mutex
    bool m_isScheduled = false; // a slice is on its way; guarded by m_mutex
};

} // namespace vantle
