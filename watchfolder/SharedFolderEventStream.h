// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/FileSystemEventStream.h"

namespace vantle {

class RunLoop;

/// An event source for a folder that other machines change too, about which the kernel says nothing: the
/// events of another source, and a scan of the folder whenever it changed and now and then in any case, since
/// the folder itself does not change when a file in it is written, nor when one further below comes or goes.
///
/// A thread of its own looks at the folder, so that a server that does not answer keeps nobody waiting.
class SharedFolderEventStream final : public FileSystemEventStream
{
public:
    struct Intervals
    {
        /// Between looks at the folder.
        std::chrono::milliseconds look{2000};
        /// Between scans in any case; ten times what the last comparison took, if that is more.
        std::chrono::milliseconds scan{30'000};
    };

    /// The other source has not been started.
    SharedFolderEventStream(Configuration configuration, std::shared_ptr<FileSystemEventStream> events,
                            Intervals intervals);
    ~SharedFolderEventStream() override;

    std::error_code start() override;
    void stop() override;
    std::error_code watchDirectory(const std::string &path, int descriptor) override
    {
        return m_events->watchDirectory(path, descriptor);
    }
    void flush(std::function<void()> done) override { m_events->flush(std::move(done)); }
    void comparisonTook(std::chrono::milliseconds duration) override;
    [[nodiscard]] bool tellsOwnEvents() const override { return m_events->tellsOwnEvents(); }
    [[nodiscard]] WatchBackend backend() const override { return m_events->backend(); }
    [[nodiscard]] QString description() const override;

private:
    struct State;

    const Configuration m_configuration;
    const std::shared_ptr<FileSystemEventStream> m_events;
    const std::shared_ptr<State> m_state;
    std::shared_ptr<RunLoop> m_loop; // set by start
};

} // namespace vantle
