// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/WatchedDirectories.h"

#include <QtCore/QtGlobal>

#include <sys/types.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

namespace vantle {

/// A queue of kernel events with its marks: one of fanotify or inotify, or what a test puts before them. Read
/// by one thread; marks are placed, and records parsed, by others, one at a time.
class KernelQueue
{
public:
    /// What a record says. The directory is null for one that is not watched (any more).
    struct Record
    {
        const std::string *directory = nullptr;
        WatchRole role = WatchRole::Below;
        std::string_view name; // empty for the directory itself
        quint32 mask = 0;
        bool own = false; // this process caused it; never said by inotify
    };
    using Handle = std::function<void(const Record &)>;

    virtual ~KernelQueue() = default;

    /// Readable when something has come.
    [[nodiscard]] virtual int descriptor() const = 0;
    /// Like ::read(), never blocking.
    virtual ssize_t read(char *buffer, std::size_t size) = 0;

    /// The descriptor is open on the directory for the duration of the call.
    virtual std::error_code mark(const std::string &path, int descriptor, WatchRole role) = 0;
    /// The directory and all below it have left the place.
    virtual void forgetTree(const std::string &path) = 0;
    /// Hands over each record; false when not all could be read.
    virtual bool parse(std::string_view bytes, const Handle &handle) = 0;
};

/// Opens a new, empty queue; null with the error when the kernel refuses.
using OpenKernelQueue = std::function<std::unique_ptr<KernelQueue>(std::error_code &)>;

/// Needs no privilege. Tells own changes from foreign ones by the process id.
std::unique_ptr<KernelQueue> openFanotifyQueue(std::error_code &error);
/// On every kernel and file system. Does not tell own changes from foreign ones.
std::unique_ptr<KernelQueue> openInotifyQueue(std::error_code &error);

} // namespace vantle
