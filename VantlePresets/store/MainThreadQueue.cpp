// SPDX-License-Identifier: MIT
#include "VantlePresets/store/MainThreadQueue.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QPointer>
#include <QtCore/QTimer>

#include <utility>

namespace vantle {
namespace {

constexpr qint64 kSliceMilliseconds = 4;

} // namespace

void MainThreadQueue::post(Task task)
{
    {
        const std::lock_guard lock(m_mutex);
        m_tasks.push_back(std::move(task));
        if (std::exchange(m_isScheduled, true))
            return;
    }
    QMetaObject::invokeMethod(this, &MainThreadQueue::runSlice, Qt::QueuedConnection);
}

/// The next task, or none.
MainThreadQueue::Task MainThreadQueue::takeTask()
{
    const std::lock_guard lock(m_mutex);
    if (m_tasks.empty())
        return {};
    Task task = std::move(m_tasks.front());
    m_tasks.pop_front();
    return task;
}

void MainThreadQueue::runAll()
{
    while (const Task task = takeTask())
        task();
}

void MainThreadQueue::runSlice()
{
    const QPointer<MainThreadQueue> self(this); // a task may end in the destruction of the queue's owner
    QElapsedTimer elapsed;
    elapsed.start();
    {
        const std::lock_guard lock(m_mutex);
        m_isScheduled = false;
    }
    do {
        const Task task = takeTask();
        if (!task)
            return;
        {
            // Before the task runs, which may start an event loop of its own (a dialog). By a timer: posted
            // events are all delivered before the loop looks at anything else.
            const std::lock_guard lock(m_mutex);
            if (!m_tasks.empty() && !std::exchange(m_isScheduled, true))
                QTimer::singleShot(0, this, &MainThreadQueue::runSlice);
        }
        task();
    } while (self && elapsed.elapsed() < kSliceMilliseconds);
}

} // namespace vantle
