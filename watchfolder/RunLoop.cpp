// SPDX-License-Identifier: MIT
#include "watchfolder/RunLoop.h"

#include <QCoreApplication>
#include <QThread>
#include <QTimer>

#include <condition_variable>
#include <cstdio>
#include <deque>
#include <exception>
#include <mutex>
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

    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        while (std::optional<State::Waiting> next = take()) {
            if (next->delay.count() == 0)
                m_state->run(next->task);
            else
                QTimer::singleShot(next->delay, Qt::PreciseTimer, this,
                                   [state = m_state, task = std::move(next->task)] { state->run(task); });
        }
        return true;
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
};

std::shared_ptr<RunLoop> RunLoop::current()
{
    return std::make_shared<RunLoop>();
}

std::shared_ptr<RunLoop> RunLoop::main()
{
    static const std::shared_ptr<RunLoop> loop = [] {
        auto made = std::make_shared<RunLoop>();
        if (QCoreApplication *application = QCoreApplication::instance())
            made->m_receiver->moveToThread(application->thread());
        qAddPostRoutine([] { main()->close(); });
        return made;
    }();
    return loop;
}

RunLoop::RunLoop() : m_state(std::make_shared<State>()), m_receiver(new Receiver(m_state)) {}

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
