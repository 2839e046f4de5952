// SPDX-License-Identifier: MIT
#include "watchfolder/FanotifyEventStream.h"

#include "watchfolder/KernelEventTable.h"

#include <fcntl.h>
#include <sys/fanotify.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>

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

struct DirectoryAndName
{
    std::string_view key;
    std::string_view name;
};

// The records that follow the metadata; only the one with directory and name counts.
DirectoryAndName findDirectoryAndName(std::string_view records)
{
    while (records.size() >= sizeof(fanotify_event_info_header)) {
        fanotify_event_info_header header = {};
        std::memcpy(&header, records.data(), sizeof header);
        if (header.len < sizeof header || header.len > records.size())
            return {};
        if (header.info_type == FAN_EVENT_INFO_TYPE_DFID_NAME) {
            std::string_view record = records.substr(sizeof header, header.len - sizeof header);
            unsigned handleBytes = 0;
            std::memcpy(&handleBytes, record.data() + sizeof(__kernel_fsid_t), sizeof handleBytes);
            const size_t keySize = sizeof(__kernel_fsid_t) + offsetof(file_handle, f_handle) + handleBytes;
            if (keySize >= record.size())
                return {};
            return {record.substr(0, keySize), std::string_view(record.data() + keySize)};
        }
        records.remove_prefix(header.len);
    }
    return {};
}

} // namespace

FanotifyEventStream::FanotifyEventStream(Configuration configuration)
    : KernelEventStream(std::move(configuration)), m_ownProcess(getpid())
{
}

Descriptor FanotifyEventStream::openQueue()
{
    Descriptor queue(fanotify_init(FAN_CLASS_NOTIF | FAN_REPORT_DFID_NAME | FAN_CLOEXEC | FAN_NONBLOCK,
                                   O_RDONLY | O_CLOEXEC));
    if (queue.isOpen())
        m_directories.clear();
    return queue;
}

std::error_code FanotifyEventStream::mark(int queue, const std::string &path, int descriptor, WatchRole role)
{
    std::string key;
    if (const std::error_code error = readHandle(descriptor, key))
        return error;
    // The descriptor, and not the path, so that mark and handle are of the same directory whatever happens
    // meanwhile.
    const std::string pathOfDescriptor = "/proc/self/fd/" + std::to_string(descriptor);
    if (fanotify_mark(queue, FAN_MARK_ADD | FAN_MARK_ONLYDIR,
                      eventsForRole(role) | FAN_ONDIR | FAN_EVENT_ON_CHILD, AT_FDCWD,
                      pathOfDescriptor.c_str()) != 0)
        return {errno, std::system_category()};
    m_directories.add(key, path, role);
    return {};
}

// The kernel's marks stay until the directories are gone, since they can't be addressed without their new
// paths; their events are those of unknown directories.
void FanotifyEventStream::forgetTree(int, const std::string &path)
{
    m_directories.removeTree(path, [](const std::string &) {});
}

void FanotifyEventStream::parse(std::string_view bytes)
{
    while (bytes.size() >= sizeof(fanotify_event_metadata)) {
        fanotify_event_metadata event = {};
        std::memcpy(&event, bytes.data(), sizeof event);
        if (event.vers != FANOTIFY_METADATA_VERSION || event.event_len > bytes.size())
            return;
        const auto [key, name] =
            findDirectoryAndName(bytes.substr(event.metadata_len, event.event_len - event.metadata_len));
        bytes.remove_prefix(event.event_len);

        const auto *directory = m_directories.find(key);
        handle({.directory = directory ? &directory->path : nullptr,
                .role = directory ? directory->role : WatchRole::Below,
                .name = name == "." ? std::string_view() : name,
                .mask = static_cast<quint32>(event.mask),
                .own = event.pid == m_ownProcess});
    }
}

} // namespace vantle
