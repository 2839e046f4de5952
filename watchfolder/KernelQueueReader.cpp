// SPDX-License-Identifier: MIT
#include "watchfolder/KernelQueueReader.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <system_error>

namespace vantle {

namespace {

constexpr std::size_t kReadSize = std::size_t{256} << 10;
// Past this nobody fetches; a scan of the folder is cheaper than going through that many events.
constexpr std::size_t kMostBytes = std::size_t{64} << 20;
// After a read the thread naps: a busy writer then costs one wake-up per nap and not one per event. The
// kernel's queue holds 16,384 events, which takes even several busy writers far longer than this to fill.
constexpr int kNapMilliseconds = 5;

Descriptor openWakeDescriptor()
{
    Descriptor descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!descriptor.isOpen())
        throw std::system_error(errno, std::system_category(), "eventfd");
    return descriptor;
}

} // namespace

KernelQueueReader::KernelQueueReader(std::shared_ptr<KernelQueue> queue, Arrived arrived)
    : m_wake(openWakeDescriptor()), m_mounts(open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)),
      m_arrived(std::move(arrived)), m_queue(std::move(queue)), m_thread([this] { run(); })
{
}

KernelQueueReader::~KernelQueueReader()
{
    stop();
}

void KernelQueueReader::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    wake();
    const std::lock_guard lock(m_stopMutex);
    if (m_thread.joinable())
        m_thread.join();
}

void KernelQueueReader::replaceQueue(std::shared_ptr<KernelQueue> queue)
{
    {
        const std::lock_guard lock(m_mutex);
        m_queue.swap(queue);
        m_batch.bytes.clear();
        m_batch.dropped = false;
    }
    wake();
}

KernelQueueReader::Batch KernelQueueReader::take()
{
    const std::lock_guard lock(m_mutex);
    Batch batch = std::move(m_batch);
    m_batch = {.bytes = {}, .drained = batch.drained};
    return batch;
}

std::uint64_t KernelQueueReader::requestDrain()
{
    std::uint64_t number = 0;
    {
        const std::lock_guard lock(m_mutex);
        number = ++m_drainWanted;
    }
    wake();
    return number;
}

void KernelQueueReader::wake()
{
    eventfd_write(m_wake.get(), 1);
}

void KernelQueueReader::run()
{
    bool napping = false;
    std::shared_ptr<KernelQueue> queue;
    while (true) {
        {
            const std::lock_guard lock(m_mutex);
            if (m_stopping)
                return;
            queue = m_queue;
        }
        std::array<pollfd, 3> sources = {{{m_wake.get(), POLLIN, 0},
                                          {napping ? -1 : queue->descriptor(), POLLIN, 0},
                                          {m_mounts.get(), POLLPRI, 0}}};
        // An interrupted poll says nothing about the sources; the reads below are harmless then.
        poll(sources.data(), sources.size(), napping ? kNapMilliseconds : -1);
        eventfd_t ignored = 0;
        eventfd_read(m_wake.get(), &ignored);
        std::uint64_t drain = 0;
        {
            const std::lock_guard lock(m_mutex);
            if (m_stopping)
                return;
            queue = m_queue;
            drain = m_drainWanted;
        }
        const bool came = readAll(queue);
        const bool mountsChanged = (sources[2].revents & (POLLPRI | POLLERR)) != 0;
        bool drainIsNew = false;
        {
            const std::lock_guard lock(m_mutex);
            m_batch.mountsChanged = m_batch.mountsChanged || mountsChanged;
            drainIsNew = m_batch.drained != drain;
            m_batch.drained = drain;
        }
        if (came || mountsChanged || drainIsNew)
            m_arrived();
        napping = came;
    }
}

// Reads until the queue is empty; a read that leaves room has emptied it.
bool KernelQueueReader::readAll(const std::shared_ptr<KernelQueue> &queue)
{
    static thread_local const auto buffer = std::make_unique<char[]>(kReadSize);
    bool came = false;
    while (true) {
        const ssize_t size = queue->read(buffer.get(), kReadSize);
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0)
            return came;
        came = true;
        store(queue, {buffer.get(), static_cast<std::size_t>(size)});
        if (static_cast<std::size_t>(size) < kReadSize / 2)
            return true;
    }
}

void KernelQueueReader::store(const std::shared_ptr<KernelQueue> &queue, std::string_view bytes)
{
    const std::lock_guard lock(m_mutex);
    if (queue != m_queue)
        return;
    if (m_batch.bytes.size() + bytes.size() > kMostBytes) {
        m_batch.bytes.clear();
        m_batch.dropped = true;
    }
    m_batch.bytes.append(bytes);
}

} // namespace vantle
