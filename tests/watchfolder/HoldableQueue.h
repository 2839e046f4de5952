// SPDX-License-Identifier: MIT
#pragma once

#include "base/Descriptor.h"
#include "watchfolder/KernelQueue.h"

#include <sys/epoll.h>

#include <cerrno>
#include <mutex>

namespace vantle::test {

/// A kernel queue that nobody reads while it is held, so that it overflows. For one that holds, and outlives,
/// the next ones too: the holder is shared by all that are opened.
class HoldableQueue final : public KernelQueue
{
public:
    class Holder
    {
    public:
        void hold(bool held)
        {
            const std::lock_guard lock(m_mutex);
            m_isHeld = held;
            if (m_current != nullptr)
                m_current->listen(!held);
        }

    private:
        friend class HoldableQueue;
        std::mutex m_mutex;
        HoldableQueue *m_current = nullptr;
        bool m_isHeld = false;
    };

    HoldableQueue(std::unique_ptr<KernelQueue> queue, std::shared_ptr<Holder> holder)
        : m_queue(std::move(queue)), m_holder(std::move(holder)), m_poll(epoll_create1(EPOLL_CLOEXEC))
    {
        const std::lock_guard lock(m_holder->m_mutex);
        m_holder->m_current = this;
        listen(!m_holder->m_isHeld);
    }
    ~HoldableQueue() override
    {
        const std::lock_guard lock(m_holder->m_mutex);
        if (m_holder->m_current == this)
            m_holder->m_current = nullptr;
    }

    int descriptor() const override { return m_poll.get(); }
    ssize_t read(char *buffer, std::size_t size) override
    {
        const std::lock_guard lock(m_holder->m_mutex);
        errno = EAGAIN;
        return m_holder->m_isHeld ? -1 : m_queue->read(buffer, size);
    }
    std::error_code mark(const std::string &path, int descriptor, WatchRole role) override
    {
        return m_queue->mark(path, descriptor, role);
    }
    void forgetTree(const std::string &path) override { m_queue->forgetTree(path); }
    bool parse(std::string_view bytes, const Handle &handle) override
    {
        return m_queue->parse(bytes, handle);
    }

private:
    void listen(bool listens)
    {
        epoll_event event = {.events = EPOLLIN, .data = {}};
        epoll_ctl(m_poll.get(), listens ? EPOLL_CTL_ADD : EPOLL_CTL_DEL, m_queue->descriptor(), &event);
    }

    const std::unique_ptr<KernelQueue> m_queue;
    const std::shared_ptr<Holder> m_holder;
    const Descriptor m_poll;
};

} // namespace vantle::test
