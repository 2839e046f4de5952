// SPDX-License-Identifier: MIT
#include "watchfolder/FileSystemEventStream.h"

#include "watchfolder/KernelEventStream.h"
#include "watchfolder/SharedFolderEventStream.h"
#include "watchfolder/WatchFolderEnvironment.h"

#include <array>

namespace vantle {

FileSystemEventStream::~FileSystemEventStream() = default;

std::shared_ptr<FileSystemEventStream>
startKernelEventStream(const FileSystemEventStream::Configuration &configuration, WatchBackend backend,
                       std::error_code &error)
{
    struct Kernel
    {
        WatchBackend backend;
        std::unique_ptr<KernelQueue> (*open)(std::error_code &);
    };
    constexpr std::array kKernels = {Kernel{WatchBackend::Fanotify, openFanotifyQueue},
                                     Kernel{WatchBackend::Inotify, openInotifyQueue}};
    for (const Kernel &kernel : kKernels) {
        if (backend != WatchBackend::Automatic && backend != kernel.backend)
            continue;
        std::shared_ptr<FileSystemEventStream> stream =
            std::make_shared<KernelEventStream>(configuration, kernel.backend, kernel.open);
        if (isSharedFileSystem(configuration.fileSystemType))
            stream = std::make_shared<SharedFolderEventStream>(configuration, std::move(stream),
                                                               SharedFolderEventStream::Intervals());
        error = stream->start();
        if (!error)
            return stream;
    }
    return nullptr;
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
