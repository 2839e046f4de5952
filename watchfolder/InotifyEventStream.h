// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/KernelEventStream.h"

namespace vantle {

/// Events of inotify: on every kernel and file system. It does not tell own changes from foreign ones.
class InotifyEventStream final : public KernelEventStream
{
public:
    using KernelEventStream::KernelEventStream;
    ~InotifyEventStream() override { stopIfStarted(); }

    bool tellsOwnEvents() const override { return false; }
    WatchBackend backend() const override { return WatchBackend::Inotify; }

protected:
    Descriptor openQueue() override;
    std::error_code mark(int queue, const std::string &path, int descriptor, WatchRole role) override;
    void forgetTree(int queue, const std::string &path) override;
    bool parse(std::string_view bytes) override;

private:
    WatchedDirectories<int, std::hash<int>> m_directories;
};

} // namespace vantle
