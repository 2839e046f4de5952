// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/core/Log.h"
#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/store/PresetsManager.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Wait.h"
#include "watchfolder/VRXWatchFolder.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>

namespace vantle::test {

/// A data directory with a presets folder, managers on it, and other processes that change its files.
class LiveStore
{
public:
    LiveStore()
    {
        setLogSink([this](const QString &line) {
            const std::lock_guard lock(m_mutex);
            m_log.append(line);
        });
        std::filesystem::create_directories(folder());
    }
    ~LiveStore() { setLogSink({}); }
    LiveStore(const LiveStore &) = delete;
    LiveStore &operator=(const LiveStore &) = delete;

    [[nodiscard]] QString dataDirectory() const { return QString::fromStdString(m_data.path()); }
    [[nodiscard]] std::filesystem::path folder() const { return m_data.path("Orvalle/Streaming Presets"); }
    [[nodiscard]] std::filesystem::path file(const std::string &name) const { return folder() / name; }

    /// A manager that has read the folder.
    [[nodiscard]] std::unique_ptr<PresetsManager> makeManager() const
    {
        auto manager = std::make_unique<PresetsManager>([this] { return QStringList{dataDirectory()}; });
        if (!waitFor([&] { return manager->isLoaded(); }))
            return nullptr;
        return manager;
    }

    /// Runs a shell script in the folder, as another process; true when it succeeds.
    bool runElsewhere(const QString &script) const
    {
        ChildProcess shell({"sh", "-ec", script.toStdString()}, folder().string());
        return waitFor([&] { return shell.status().has_value(); }) && shell.status() == 0;
    }

    /// Lets the manager hear of everything that happened in the folder before the call.
    static bool settle(PresetsManager &manager)
    {
        manager.waitForFileTasks();
        std::atomic<bool> isFlushed = false;
        manager.watchFolder()->flush([&] { isFlushed = true; });
        if (!waitFor([&] { return isFlushed.load(); }))
            return false;
        QCoreApplication::processEvents();
        return true;
    }

    void writePreset(const QString &name, StreamingType type = StreamingType::hls,
                     qint64 bitRate = 4500) const
    {
        const auto preset = makePreset(type, name);
        preset->videoSettings().first()->setBitRate(bitRate);
        preset->writeToFileAtPath(QString::fromStdString(file(name.toStdString() + ".json").string()));
    }

    /// The preset that a fresh start would find in a file; null when it would find none.
    [[nodiscard]] std::shared_ptr<VantlePreset> onDisk(const std::string &name) const
    {
        try {
            return readPresetFile(file(name + ".json"));
        } catch (const std::exception &) {
            return nullptr;
        }
    }

    [[nodiscard]] QStringList log() const
    {
        const std::lock_guard lock(m_mutex);
        return m_log;
    }

    [[nodiscard]] QStringList logOf(QLatin1StringView beginning) const
    {
        QStringList found;
        for (const QString &line : log()) {
            if (line.startsWith(beginning))
                found.append(line);
        }
        return found;
    }

    [[nodiscard]] QStringList fileNames() const
    {
        QStringList names;
        for (const auto &entry : std::filesystem::directory_iterator(folder()))
            names.append(QString::fromStdString(entry.path().filename().string()));
        names.sort();
        return names;
    }

private:
    TemporaryFolder m_data;
    mutable std::mutex m_mutex;
    QStringList m_log;
};

inline QStringList namesOf(const PresetsManager &manager)
{
    QStringList names;
    for (const auto &preset : manager.presets())
        names.append(preset->name());
    return names;
}

} // namespace vantle::test
