// SPDX-License-Identifier: MIT
#include "VantlePresets/store/MainThreadQueue.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QPointer>
#include <QtCore/QTimer>

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

void MainThreadQueue::runSlice()
{
    const QPointer<MainThreadQueue> self(this); // a task may end in the destruction of the queue's owner
    QElapsedTimer elapsed;
    elapsed.start();
    do {
        Task task;
        {
            const std::lock_guard lock(m_mutex);
            if (m_tasks.empty()) {
                m_isScheduled = false;
                return;
            }
            task = std::move(m_tasks.front());
            m_tasks.pop_front();
        }
        task();
        if (!self)
            return;
    } while (elapsed.elapsed() < kSliceMilliseconds);
    // Not a posted event: those are all delivered before the loop looks at anything else.
    QTimer::singleShot(0, this, &MainThreadQueue::runSlice);
}

} // namespace vantle
