// SPDX-License-Identifier: MIT
#include "base/WorkingQueue.h"

#include <sys/resource.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdint>
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
    struct Waiting
    {
        std::uint64_t number;
        Operation operation;
    };

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Waiting> waiting;
    std::shared_ptr<Cancelled> running;
    std::uint64_t runningNumber = 0;
    std::thread::id runner; // of what is running
    std::uint64_t lastNumber = 0;
    std::thread thread;
    int nice = 0;
    bool closed = false;

    bool isOwnThread() const { return running && runner == std::this_thread::get_id(); }
    bool isFinished(std::uint64_t upTo) const
    {
        return (waiting.empty() || waiting.front().number > upTo) && (!running || runningNumber > upTo);
    }

    /// Runs the first of what waits. Unlocks meanwhile.
    void runNext(std::unique_lock<std::mutex> &lock)
    {
        Waiting next = std::move(waiting.front());
        waiting.pop_front();
        const auto cancelled = std::make_shared<Cancelled>(false);
        running = cancelled;
        runningNumber = next.number;
        runner = std::this_thread::get_id();
        lock.unlock();
        try {
            next.operation(*cancelled);
        } catch (const std::exception &exception) {
            std::fprintf(stderr, "Vantle: an operation failed: %s\n", exception.what());
        }
        next.operation = nullptr;
        lock.lock();
        running.reset();
        changed.notify_all();
    }

    void runUntilClosed()
    {
        std::unique_lock lock(mutex);
        setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), nice);
        while (true) {
            // What runs may have been begun by a thread that found no thread here.
            changed.wait(lock, [this] { return closed || (!waiting.empty() && !running); });
            if (closed)
                return;
            runNext(lock);
        }
    }
};

WorkingQueue::WorkingQueue(QualityOfService qualityOfService) : m_state(std::make_shared<State>())
{
    m_state->nice = niceness(qualityOfService);
    ensureThread();
}

WorkingQueue::~WorkingQueue()
{
    cancelAll();
    std::thread thread;
    bool isOwnThread = false;
    {
        std::unique_lock lock(m_state->mutex);
        m_state->closed = true;
        isOwnThread = m_state->isOwnThread();
        thread = std::move(m_state->thread);
    }
    m_state->changed.notify_all();
    if (thread.joinable() && isOwnThread)
        thread.detach();
    else if (thread.joinable())
        thread.join();
    if (!isOwnThread)
        waitUntilFinished(); // what another thread runs for want of ours
}

std::error_code WorkingQueue::ensureThread()
{
    const std::lock_guard lock(m_state->mutex);
    if (m_state->thread.joinable())
        return {};
    try {
        m_state->thread = std::thread([state = m_state] { state->runUntilClosed(); });
        return {};
    } catch (const std::system_error &error) {
        return error.code();
    }
}

void WorkingQueue::add(Operation operation)
{
    const bool hasThread = !ensureThread();
    const std::shared_ptr<State> state = m_state; // an operation may destroy the queue
    std::unique_lock lock(state->mutex);
    state->waiting.push_back({++state->lastNumber, std::move(operation)});
    if (hasThread)
        state->changed.notify_all();
    else
        while (!state->closed && !state->running && !state->waiting.empty())
            state->runNext(lock);
}

bool WorkingQueue::cancelAll()
{
    std::deque<State::Waiting> dropped; // outlives the lock: an operation may own what locks again
    const std::lock_guard lock(m_state->mutex);
    dropped.swap(m_state->waiting);
    if (m_state->running)
        *m_state->running = true;
    m_state->changed.notify_all();
    return !dropped.empty() || m_state->running;
}

void WorkingQueue::waitUntilFinished()
{
    const std::shared_ptr<State> state = m_state;
    std::unique_lock lock(state->mutex);
    if (state->isOwnThread())
        return;
    const std::uint64_t last = state->lastNumber;
    state->changed.wait(lock, [&state, last] { return state->isFinished(last); });
}

} // namespace vantle
