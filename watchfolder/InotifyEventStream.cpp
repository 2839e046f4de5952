// SPDX-License-Identifier: MIT
#include "watchfolder/InotifyEventStream.h"

#include "watchfolder/KernelRecords.h"

#include <sys/inotify.h>

#include <cerrno>

namespace vantle {

Descriptor InotifyEventStream::openQueue()
{
    Descriptor queue(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (queue.isOpen())
        m_directories.clear();
    return queue;
}

std::error_code InotifyEventStream::mark(int queue, const std::string &path, int, WatchRole role)
{
    // Files that are unlinked but still open are none of our business.
    quint32 mask = eventsForRole(role) | IN_ONLYDIR | IN_EXCL_UNLINK;
    if (role == WatchRole::Below)
        mask |= IN_DONT_FOLLOW;
    const int watch = inotify_add_watch(queue, path.c_str(), mask);
    if (watch < 0)
        return {errno, std::system_category()};
    m_directories.add(watch, path, role);
    return {};
}

void InotifyEventStream::forgetTree(int queue, const std::string &path)
{
    m_directories.removeTree(path, [queue](int watch) { inotify_rm_watch(queue, watch); });
}

bool InotifyEventStream::parse(std::string_view bytes)
{
    return forEachInotifyRecord(bytes, [this](const InotifyRecord &record) {
        const auto *directory = m_directories.find(record.watch);
        handle({.directory = directory ? &directory->path : nullptr,
                .role = directory ? directory->role : WatchRole::Below,
                .name = record.name,
                .mask = record.mask});
        if (record.mask & IN_IGNORED)
            m_directories.remove(record.watch);
    });
}

} // namespace vantle
