// SPDX-License-Identifier: MIT
#include "watchfolder/WorkingQueue.h"

#include <sys/resource.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdio>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>

namespace vantle {

namespace {

// Linux schedules threads by their own nice values; an unprivileged process may only give way.
int niceness(QualityOfService qualityOfService)
{
    switch (qualityOfService) {
    case QualityOfService::UserInteractive:
    case QualityOfService::UserInitiated:
    case QualityOfService::Default:
        return 0;
    case QualityOfService::Utility:
        return 5;
    case QualityOfService::Background:
        return 10;
    }
    return 0;
}

} // namespace

struct WorkingQueue::State
{
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Operation> waiting;
    std::shared_ptr<Cancelled> running;
    std::thread thread;
    int nice = 0;
    bool closed = false;

    bool isOwnThread() const { return thread.get_id() == std::this_thread::get_id(); }
};

WorkingQueue::WorkingQueue(QualityOfService qualityOfService) : m_state(std::make_shared<State>())
{
    m_state->nice = niceness(qualityOfService);
    const std::lock_guard lock(m_state->mutex);
    m_state->thread = std::thread([state = m_state] { run(state); });
}

WorkingQueue::~WorkingQueue()
{
    cancelAll();
    {
        const std::lock_guard lock(m_state->mutex);
        m_state->closed = true;
    }
    m_state->changed.notify_all();
    if (m_state->isOwnThread())
        m_state->thread.detach();
    else
        m_state->thread.join();
}

void WorkingQueue::add(Operation operation)
{
    {
        const std::lock_guard lock(m_state->mutex);
        m_state->waiting.push_back(std::move(operation));
    }
    m_state->changed.notify_all();
}

bool WorkingQueue::cancelAll()
{
    std::deque<Operation> dropped; // outlives the lock: an operation may own what locks again
    const std::lock_guard lock(m_state->mutex);
    dropped.swap(m_state->waiting);
    if (m_state->running)
        *m_state->running = true;
    return !dropped.empty() || m_state->running;
}

void WorkingQueue::waitUntilFinished()
{
    std::unique_lock lock(m_state->mutex);
    if (m_state->isOwnThread())
        return;
    m_state->changed.wait(lock, [this] { return m_state->waiting.empty() && !m_state->running; });
}

void WorkingQueue::run(const std::shared_ptr<State> &state)
{
    std::unique_lock lock(state->mutex);
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), state->nice);
    while (true) {
        state->changed.wait(lock, [&state] { return state->closed || !state->waiting.empty(); });
        if (state->closed)
            return;
        Operation operation = std::move(state->waiting.front());
        state->waiting.pop_front();
        const auto cancelled = std::make_shared<Cancelled>(false);
        state->running = cancelled;
        lock.unlock();
        try {
            operation(*cancelled);
        } catch (const std::exception &exception) {
            std::fprintf(stderr, "Vantle: an operation failed: %s\n", exception.what());
        }
        operation = nullptr;
        lock.lock();
        state->running.reset();
        state->changed.notify_all();
    }
}

} // namespace vantle
