// SPDX-License-Identifier: MIT
#include "base/Descriptor.h"
#include "watchfolder/KernelEventTable.h"
#include "watchfolder/KernelQueue.h"
#include "watchfolder/KernelRecords.h"

#include <sys/inotify.h>

#include <cerrno>

namespace vantle {

namespace {

class InotifyQueue final : public KernelQueue
{
public:
    explicit InotifyQueue(Descriptor queue) : m_queue(std::move(queue)) {}

    int descriptor() const override { return m_queue.get(); }
    ssize_t read(char *buffer, std::size_t size) override { return ::read(m_queue.get(), buffer, size); }

    std::error_code mark(const std::string &path, int, WatchRole role) override
    {
        // Files that are unlinked but still open are none of our business. A directory of
        // two roles keeps the events of both.
        quint32 mask = eventsForRole(role) | IN_ONLYDIR | IN_EXCL_UNLINK | IN_MASK_ADD;
        if (role == WatchRole::Below)
            mask |= IN_DONT_FOLLOW;
        const int watch = inotify_add_watch(m_queue.get(), path.c_str(), mask);
        if (watch < 0)
            return {errno, std::system_category()};
        m_directories.add(watch, path, role);
        return {};
    }

    void forgetTree(const std::string &path) override
    {
        m_directories.removeTree(path, [this](int watch) { inotify_rm_watch(m_queue.get(), watch); });
    }

    bool parse(std::string_view bytes, const Handle &handle) override
    {
        return forEachInotifyRecord(bytes, [this, &handle](const InotifyRecord &record) {
            const auto *directory = m_directories.find(record.watch);
            handle({.directory = directory ? &directory->path : nullptr,
                    .role = directory ? directory->role : WatchRole::Below,
                    .name = record.name,
                    .mask = record.mask});
            if (record.mask & IN_IGNORED)
                m_directories.remove(record.watch);
        });
    }

private:
    const Descriptor m_queue;
    WatchedDirectories<int, std::hash<int>> m_directories;
};

} // namespace

std::unique_ptr<KernelQueue> openInotifyQueue(std::error_code &error)
{
    Descriptor queue(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    error = queue.isOpen() ? std::error_code() : std::error_code(errno, std::system_category());
    return queue.isOpen() ? std::make_unique<InotifyQueue>(std::move(queue)) : nullptr;
}

} // namespace vantle
