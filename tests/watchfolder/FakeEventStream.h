// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/FileSystemEventStream.h"

#include <mutex>
#include <set>

namespace vantle::test {

/// An event source that says what the test wants it to say.
class FakeEventStream final : public FileSystemEventStream
{
public:
    explicit FakeEventStream(Configuration configuration) : m_configuration(std::move(configuration)) {}

    std::error_code start() override { return {}; }
    void stop() override {}
    std::error_code watchDirectory(const std::string &path, int) override
    {
        const std::lock_guard lock(m_mutex);
        m_watched.insert(path);
        return watchError;
    }
    void flush(std::function<void()> done) override { done(); }
    bool tellsOwnEvents() const override { return true; }
    WatchBackend backend() const override { return WatchBackend::Automatic; }
    QString description() const override { return QStringLiteral("fake"); }

    void deliver(const std::string &name, quint32 flags)
    {
        const std::string path = name.empty() ? m_configuration.folder : m_configuration.folder + '/' + name;
        m_configuration.callback({VRXWatchFolderEvent(path, 0, flags, 1)});
    }
    std::set<std::string> watched() const
    {
        const std::lock_guard lock(m_mutex);
        return m_watched;
    }

    std::error_code watchError; // what watchDirectory answers

private:
    const Configuration m_configuration;
    mutable std::mutex m_mutex;
    std::set<std::string> m_watched;
};

} // namespace vantle::test
