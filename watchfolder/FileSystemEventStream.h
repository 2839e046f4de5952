// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/Export.h"
#include "watchfolder/VRXWatchFolderEvent.h"

#include <chrono>
#include <functional>
#include <memory>
#include <system_error>
#include <vector>

namespace vantle {

/// Where events come from.
enum class WatchBackend {
    Automatic, ///< fanotify where the kernel and the file system allow it, else inotify
    Fanotify,
    Inotify,
};

/// A source of file-system events below one folder.
///
/// start() is called once, on the thread whose event loop gets the callback. All other functions may be
/// called from any thread. After stop() no callback begins.
class VANTLE_WATCHFOLDER_EXPORT FileSystemEventStream
{
public:
    using Callback = std::function<void(std::vector<VRXWatchFolderEvent>)>;

    struct Configuration
    {
        /// Without a slash at its end.
        std::string folder;
        /// How long events are collected before the callback gets them.
        std::chrono::milliseconds latency{1000};
        Callback callback;
    };

    virtual ~FileSystemEventStream() = default;

    virtual std::error_code start() = 0;
    virtual void stop() = 0;

    /// Adds a directory below the folder; the folder itself is watched from the start. The descriptor is open
    /// on the directory for the duration of the call.
    virtual std::error_code watchDirectory(const std::string &path, int descriptor) = 0;

    /// Delivers every event of before the call without waiting for the latency to pass, then calls done on
    /// the event loop of the stream. Never calls it when the stream is stopped before that.
    virtual void flush(std::function<void()> done) = 0;

    /// True when events that this process alone caused carry OwnEvent.
    virtual bool tellsOwnEvents() const = 0;
    virtual WatchBackend backend() const = 0;
    virtual QString description() const = 0;
};

using EventStreamFactory = std::function<std::shared_ptr<FileSystemEventStream>(
    const FileSystemEventStream::Configuration &, WatchBackend, std::error_code &)>;

/// Makes and starts a kernel event stream. None, with the error, when that is not possible.
VANTLE_WATCHFOLDER_EXPORT std::shared_ptr<FileSystemEventStream>
startKernelEventStream(const FileSystemEventStream::Configuration &, WatchBackend, std::error_code &error);

VANTLE_WATCHFOLDER_EXPORT QString backendName(WatchBackend backend);

} // namespace vantle
