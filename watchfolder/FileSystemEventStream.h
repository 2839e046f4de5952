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
    /// Gets a batch of events, on the event loop of the thread that called start().
    using Callback = std::function<void(std::vector<VRXWatchFolderEvent>)>;

    /// What a stream is made for.
    struct Configuration
    {
        /// Without a slash at its end.
        std::string folder;
        /// How long events are collected before the callback gets them.
        std::chrono::milliseconds latency{1000};
        Callback callback; ///< gets the events
        /// As WatchFolderEnvironment names it; empty for one that nothing is known of. Decides whether other
        /// machines may change the folder.
        QString fileSystemType = {};
    };

    virtual ~FileSystemEventStream();

    /// Begins to watch the folder; an error when that is not possible.
    virtual std::error_code start() = 0;
    /// Ends the callbacks; may be called more than once.
    virtual void stop() = 0;

    /// Adds a directory below the folder; the folder itself is watched from the start. The descriptor is open
    /// on the directory for the duration of the call.
    virtual std::error_code watchDirectory(const std::string &path, int descriptor) = 0;

    /// Delivers every event of before the call without waiting for the latency to pass, then calls done on
    /// the event loop of the stream. Never calls it when the stream is stopped before that.
    virtual void flush(std::function<void()> done) = 0;

    /// Hears how long the last comparison of the whole folder took, for sources that ask for some themselves.
    virtual void comparisonTook(std::chrono::milliseconds) {}

    /// True when events that this process alone caused carry OwnEvent.
    [[nodiscard]] virtual bool tellsOwnEvents() const = 0;
    /// Never Automatic.
    [[nodiscard]] virtual WatchBackend backend() const = 0;
    /// For debugging output.
    [[nodiscard]] virtual QString description() const = 0;
};

/// Makes and starts a stream. Null, with the error, when that is not possible.
using EventStreamFactory = std::function<std::shared_ptr<FileSystemEventStream>(
    const FileSystemEventStream::Configuration &, WatchBackend, std::error_code &)>;

/// Makes and starts a kernel event stream, with a look at the folder now and then where other machines may
/// change it. None, with the error, when that is not possible.
VANTLE_WATCHFOLDER_EXPORT std::shared_ptr<FileSystemEventStream>
startKernelEventStream(const FileSystemEventStream::Configuration &, WatchBackend, std::error_code &error);

VANTLE_WATCHFOLDER_EXPORT QString backendName(WatchBackend backend);

} // namespace vantle
