// SPDX-License-Identifier: MIT
#include "base/Descriptor.h"
#include "watchfolder/KernelEventTable.h"
#include "watchfolder/KernelQueue.h"
#include "watchfolder/KernelRecords.h"

#include <fcntl.h>
#include <sys/fanotify.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace vantle {

namespace {

std::error_code readHandle(int descriptor, std::string &key)
{
    struct statfs fileSystem = {};
    alignas(file_handle) char buffer[sizeof(file_handle) + MAX_HANDLE_SZ] = {};
    auto *handle = reinterpret_cast<file_handle *>(buffer);
    handle->handle_bytes = MAX_HANDLE_SZ;
    int mount = 0;
    if (fstatfs(descriptor, &fileSystem) != 0 ||
        name_to_handle_at(descriptor, "", handle, &mount, AT_EMPTY_PATH) != 0)
        return {errno, std::system_category()};
    key.assign(reinterpret_cast<const char *>(&fileSystem.f_fsid), sizeof fileSystem.f_fsid);
    key.append(buffer, offsetof(file_handle, f_handle) + handle->handle_bytes);
    return {};
}

class FanotifyQueue final : public KernelQueue
{
public:
    explicit FanotifyQueue(Descriptor queue) : m_queue(std::move(queue)), m_ownProcess(getpid()) {}

    int descriptor() const override { return m_queue.get(); }
    ssize_t read(char *buffer, std::size_t size) override { return ::read(m_queue.get(), buffer, size); }

    std::error_code mark(const std::string &path, int descriptor, WatchRole role) override
    {
        std::string key;
        if (const std::error_code error = readHandle(descriptor, key))
            return error;
        // The descriptor, and not the path, so that mark and handle are of the same directory whatever
        // happens meanwhile.
        const std::string pathOfDescriptor = "/proc/self/fd/" + std::to_string(descriptor);
        std::error_code error;
        if (fanotify_mark(m_queue.get(), FAN_MARK_ADD | FAN_MARK_ONLYDIR,
                          eventsForRole(role) | FAN_ONDIR | FAN_EVENT_ON_CHILD, AT_FDCWD,
                          pathOfDescriptor.c_str()) != 0)
            error.assign(errno, std::system_category());
        // A directory that can't be read can't be marked, but its parent's mark reports a new mode of it
        // under its own handle.
        if (!error || error.value() == EACCES)
            m_directories.add(key, path, role);
        return error;
    }

    // The kernel's marks stay until the directories are gone, since they can't be addressed without their new
    // paths; their events are those of unknown directories.
    void forgetTree(const std::string &path) override
    {
        m_directories.removeTree(path, [](const std::string &) {});
    }

    bool parse(std::string_view bytes, const Handle &handle) override
    {
        return forEachFanotifyRecord(bytes, [this, &handle](const FanotifyRecord &record) {
            const auto *directory = m_directories.find(record.directory);
            handle({.directory = directory ? &directory->path : nullptr,
                    .role = directory ? directory->role : WatchRole::Below,
                    .name = record.name == "." ? std::string_view() : record.name,
                    .mask = record.mask,
                    .own = record.process == m_ownProcess});
        });
    }

private:
    struct HandleHash
    {
        using is_transparent = void;
        size_t operator()(std::string_view handle) const { return std::hash<std::string_view>()(handle); }
    };

    const Descriptor m_queue;
    const int m_ownProcess;
    // By file-system id and file handle, laid out as in the records.
    WatchedDirectories<std::string, HandleHash> m_directories;
};

} // namespace

std::unique_ptr<KernelQueue> openFanotifyQueue(std::error_code &error)
{
    Descriptor queue(fanotify_init(FAN_CLASS_NOTIF | FAN_REPORT_DFID_NAME | FAN_CLOEXEC | FAN_NONBLOCK,
                                   O_RDONLY | O_CLOEXEC));
    error = queue.isOpen() ? std::error_code() : std::error_code(errno, std::system_category());
    return queue.isOpen() ? std::make_unique<FanotifyQueue>(std::move(queue)) : nullptr;
}

} // namespace vantle
