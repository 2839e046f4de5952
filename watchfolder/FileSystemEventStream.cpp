// SPDX-License-Identifier: MIT
#include "watchfolder/FileSystemEventStream.h"

#include "watchfolder/FanotifyEventStream.h"
#include "watchfolder/InotifyEventStream.h"

namespace vantle {

std::shared_ptr<FileSystemEventStream>
startKernelEventStream(const FileSystemEventStream::Configuration &configuration, WatchBackend backend,
                       std::error_code &error)
{
    if (backend != WatchBackend::Inotify) {
        auto stream = std::make_shared<FanotifyEventStream>(configuration);
        error = stream->start();
        if (!error)
            return stream;
        if (backend == WatchBackend::Fanotify)
            return nullptr;
    }
    auto stream = std::make_shared<InotifyEventStream>(configuration);
    error = stream->start();
    return error ? nullptr : stream;
}

QString backendName(WatchBackend backend)
{
    switch (backend) {
    case WatchBackend::Fanotify:
        return QStringLiteral("fanotify");
    case WatchBackend::Inotify:
        return QStringLiteral("inotify");
    case WatchBackend::Automatic:
        return QStringLiteral("automatic");
    }
    return {};
}

} // namespace vantle
