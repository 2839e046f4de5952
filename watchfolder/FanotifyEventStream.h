// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/KernelEventStream.h"

namespace vantle {

/// Events of fanotify, which needs no privilege here. It tells own changes from foreign ones by the process
/// id.
class FanotifyEventStream final : public KernelEventStream
{
public:
    explicit FanotifyEventStream(Configuration configuration);
    ~FanotifyEventStream() override { stopIfStarted(); }

    bool tellsOwnEvents() const override { return true; }
    WatchBackend backend() const override { return WatchBackend::Fanotify; }

protected:
    Descriptor openQueue() override;
    std::error_code mark(int queue, const std::string &path, int descriptor, WatchRole role) override;
    void forgetTree(int queue, const std::string &path) override;
    bool parse(std::string_view bytes) override;

private:
    struct HandleHash
    {
        using is_transparent = void;
        size_t operator()(std::string_view handle) const { return std::hash<std::string_view>()(handle); }
    };

    const int m_ownProcess;
    // By file-system id and file handle, laid out as in the records.
    WatchedDirectories<std::string, HandleHash> m_directories;
};

} // namespace vantle
