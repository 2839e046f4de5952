// SPDX-License-Identifier: MIT
#include "base/RunLoop.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>
#include <QtCore/QTimerEvent>

#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <exception>
#include <map>
#include <mutex>
#include <optional>
#include <thread>

namespace vantle {

struct RunLoop::State
{
    struct Waiting
    {
        std::chrono::milliseconds delay;
        Task task;
    };

    std::mutex mutex;
    std::condition_variable idle;
    std::deque<Waiting> waiting;
    std::thread::id runningOn;
    bool closed = false;

    void run(const Task &task)
    {
        {
            const std::lock_guard lock(mutex);
            if (closed)
                return;
            runningOn = std::this_thread::get_id();
        }
        try {
            task();
        } catch (const std::exception &exception) {
            std::fprintf(stderr, "WatchFolder: a task failed: %s\n", exception.what());
        }
        const std::lock_guard lock(mutex);
        runningOn = {};
        idle.notify_all();
    }
};

// The tasks wait in a queue of our own and the event is only a wake-up.
class RunLoop::Receiver final : public QObject
{
public:
    explicit Receiver(std::shared_ptr<State> state) : m_state(std::move(state)) {}

    /// Goes to the main thread, with what waits and its timers, when the thread ends.
    void liveOn(QThread *thread)
    {
        m_isMade.store(true, std::memory_order_release);
        moveToThread(thread);
        connect(
            thread, &QThread::finished, this,
            [this] {
                QCoreApplication *application = QCoreApplication::instance();
                if (application && QThread::currentThread() == this->thread())
                    moveToThread(application->thread());
            },
            Qt::DirectConnection);
    }

    bool event(QEvent *event) override
    {
        // The toolkit orders the making before the first event, out of the thread sanitizer's sight.
        if (!m_isMade.load(std::memory_order_acquire) || event->type() != QEvent::User)
            return QObject::event(event);
        while (std::optional<State::Waiting> next = take()) {
            if (next->delay.count() == 0)
                m_state->run(next->task);
            else
                m_timed.emplace(startTimer(next->delay, Qt::PreciseTimer), std::move(next->task));
        }
        return true;
    }

protected:
    void timerEvent(QTimerEvent *event) override
    {
        killTimer(event->timerId());
        if (const auto due = m_timed.extract(event->timerId()))
            m_state->run(due.mapped());
    }

private:
    std::optional<State::Waiting> take()
    {
        const std::lock_guard lock(m_state->mutex);
        if (m_state->waiting.empty())
            return std::nullopt;
        State::Waiting next = std::move(m_state->waiting.front());
        m_state->waiting.pop_front();
        return next;
    }

    const std::shared_ptr<State> m_state;
    std::map<int, Task> m_timed;
    std::atomic<bool> m_isMade = false;
};

std::shared_ptr<RunLoop> RunLoop::current()
{
    QThread *thread = QThread::currentThread();
    const QCoreApplication *application = QCoreApplication::instance();
    // A loop that does not run, or not yet, may never run; the main one does.
    if (application && thread != application->thread() && thread->loopLevel() == 0)
        thread = application->thread();
    return std::make_shared<RunLoop>(thread);
}

std::shared_ptr<RunLoop> RunLoop::main()
{
    static std::mutex mutex;
    static std::shared_ptr<RunLoop> loop;
    const std::lock_guard lock(mutex);
    if (loop)
        return loop;
    const QCoreApplication *application = QCoreApplication::instance();
    if (application == nullptr) {
        auto closed = std::make_shared<RunLoop>(QThread::currentThread());
        closed->close();
        return closed;
    }
    loop = std::make_shared<RunLoop>(application->thread());
    qAddPostRoutine([] {
        std::shared_ptr<RunLoop> closing;
        {
            const std::lock_guard closingLock(mutex);
            closing.swap(loop);
        }
        closing->close();
    });
    return loop;
}

RunLoop::RunLoop(QThread *thread) : m_state(std::make_shared<State>()), m_receiver(new Receiver(m_state))
{
    m_receiver->liveOn(thread);
}

RunLoop::~RunLoop()
{
    close();
    if (m_receiver->thread() == QThread::currentThread() && m_state->runningOn == std::thread::id())
        delete m_receiver;
    else
        m_receiver->deleteLater();
}

void RunLoop::post(Task task)
{
    postDelayed(std::chrono::milliseconds::zero(), std::move(task));
}

void RunLoop::postDelayed(std::chrono::milliseconds delay, Task task)
{
    {
        const std::lock_guard lock(m_state->mutex);
        if (m_state->closed)
            return;
        m_state->waiting.push_back({delay, std::move(task)});
    }
    QCoreApplication::postEvent(m_receiver, new QEvent(QEvent::User));
}

void RunLoop::close()
{
    std::deque<State::Waiting> dropped; // outlives the lock: a task may own what posts again
    std::unique_lock lock(m_state->mutex);
    m_state->closed = true;
    dropped.swap(m_state->waiting);
    m_state->idle.wait(lock, [this] {
        return m_state->runningOn == std::thread::id() || m_state->runningOn == std::this_thread::get_id();
    });
}

} // namespace vantle
