// SPDX-License-Identifier: MIT
#include "watchfolder/KernelRecords.h"

#include <fcntl.h>
#include <sys/fanotify.h>
#include <sys/inotify.h>

#include <cstddef>
#include <cstring>

namespace vantle {

namespace {

template <class Header>
bool readHeader(std::string_view bytes, Header &header)
{
    if (bytes.size() < sizeof header)
        return false;
    std::memcpy(&header, bytes.data(), sizeof header);
    return true;
}

/// Names are padded with NUL bytes.
std::string_view withoutPadding(std::string_view name)
{
    return name.substr(0, name.find('\0'));
}

/// A record of file-system id, handle and name, of which the first two are the directory.
bool splitDirectoryAndName(std::string_view content, FanotifyRecord &record)
{
    constexpr std::size_t kLengthAt = sizeof(__kernel_fsid_t) + offsetof(file_handle, handle_bytes);
    constexpr std::size_t kHandleAt = sizeof(__kernel_fsid_t) + offsetof(file_handle, f_handle);
    unsigned handleBytes = 0;
    if (content.size() < kHandleAt)
        return false;
    std::memcpy(&handleBytes, content.data() + kLengthAt, sizeof handleBytes);
    if (handleBytes >= content.size() - kHandleAt)
        return false;
    record.directory = content.substr(0, kHandleAt + handleBytes);
    record.name = withoutPadding(content.substr(kHandleAt + handleBytes));
    return true;
}

/// The records that follow the metadata; only the one with directory and name counts.
bool readInformation(std::string_view records, FanotifyRecord &record)
{
    fanotify_event_info_header header = {};
    while (!records.empty()) {
        if (!readHeader(records, header) || header.len < sizeof header || header.len > records.size())
            return false;
        if (header.info_type == FAN_EVENT_INFO_TYPE_DFID_NAME)
            return splitDirectoryAndName(records.substr(sizeof header, header.len - sizeof header), record);
        records.remove_prefix(header.len);
    }
    return true;
}

} // namespace

bool forEachInotifyRecord(std::string_view bytes, const std::function<void(const InotifyRecord &)> &take)
{
    inotify_event event = {};
    while (!bytes.empty()) {
        if (!readHeader(bytes, event) || event.len > bytes.size() - sizeof event)
            return false;
        const std::string_view name = bytes.substr(sizeof event, event.len);
        bytes.remove_prefix(sizeof event + event.len);
        take({.watch = event.wd, .mask = event.mask, .name = withoutPadding(name)});
    }
    return true;
}

bool forEachFanotifyRecord(std::string_view bytes, const std::function<void(const FanotifyRecord &)> &take)
{
    fanotify_event_metadata event = {};
    while (!bytes.empty()) {
        if (!readHeader(bytes, event) || event.vers != FANOTIFY_METADATA_VERSION ||
            event.metadata_len < sizeof event || event.event_len < event.metadata_len ||
            event.event_len > bytes.size())
            return false;
        FanotifyRecord record{
            .directory = {}, .name = {}, .mask = static_cast<quint32>(event.mask), .process = event.pid};
        if (!readInformation(bytes.substr(event.metadata_len, event.event_len - event.metadata_len), record))
            return false;
        bytes.remove_prefix(event.event_len);
        take(record);
    }
    return true;
}

} // namespace vantle
