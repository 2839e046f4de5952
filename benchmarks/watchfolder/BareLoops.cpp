// SPDX-License-Identifier: MIT
#include "benchmarks/watchfolder/BareLoops.h"

#include "base/Descriptor.h"
#include "watchfolder/KernelEventTable.h"

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/fanotify.h>
#include <sys/inotify.h>
#include <sys/stat.h>

#include <memory>
#include <stdexcept>

namespace vantle::benchmark {

namespace {

Descriptor openQueue(WatchBackend backend, const std::string &folder)
{
    if (backend == WatchBackend::Inotify) {
        Descriptor queue(inotify_init1(IN_CLOEXEC));
        if (inotify_add_watch(queue.get(), folder.c_str(), eventsForRole(WatchRole::Below)) < 0)
            throw std::runtime_error("inotify is refused");
        return queue;
    }
    Descriptor queue(fanotify_init(FAN_CLASS_NOTIF | FAN_REPORT_DFID_NAME | FAN_CLOEXEC, O_RDONLY));
    if (fanotify_mark(queue.get(), FAN_MARK_ADD | FAN_MARK_ONLYDIR,
                      eventsForRole(WatchRole::Below) | FAN_ONDIR | FAN_EVENT_ON_CHILD, AT_FDCWD,
                      folder.c_str()) != 0)
        throw std::runtime_error("fanotify is refused");
    return queue;
}

} // namespace

void bareReadLoop(WatchBackend backend, const std::string &folder, const std::string &lastName,
                  const std::function<void()> &ready)
{
    const Descriptor queue = openQueue(backend, folder);
    ready();
    constexpr std::size_t bufferSize = 64 * 1024;
    const auto buffer = std::make_unique<char[]>(bufferSize);
    while (true) {
        pollfd source = {queue.get(), POLLIN, 0};
        poll(&source, 1, -1);
        const ssize_t size = read(queue.get(), buffer.get(), bufferSize);
        if (size > 0 && std::string_view(buffer.get(), static_cast<std::size_t>(size)).find(lastName) !=
                            std::string_view::npos)
            return;
    }
}

std::size_t bareListing(const std::string &folder)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> stream(opendir(folder.c_str()), closedir);
    std::size_t count = 0;
    while (const dirent *entry = readdir(stream.get())) {
        struct statx found;
        if (entry->d_name[0] != '.' &&
            statx(dirfd(stream.get()), entry->d_name, AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS, &found) == 0)
            ++count;
    }
    return count;
}

} // namespace vantle::benchmark
