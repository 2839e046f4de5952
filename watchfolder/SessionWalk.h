// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/ChangeReport.h"
#include "watchfolder/FileSystemEventStream.h"
#include "watchfolder/FolderInventory.h"
#include "watchfolder/FolderWalk.h"
#include "watchfolder/WatchFolderCore.h"

#include <vector>

namespace vantle {

/// A walk through a watched folder, which fills a new inventory or finds what differs from the present one.
/// Puts each directory under watch before it is read, so that what changes after the reading comes as an
/// event. On the working queue.
class SessionWalk final : public FolderWalkVisitor
{
public:
    enum class Purpose { Fill, Compare };

    SessionWalk(const WatchFolderCore &core, FolderInventory &inventory, FileSystemEventStream &stream,
                ChangeReport &report, Purpose purpose);

    /// Walks one directory, "" for the folder, and what lies below it if that is watched. The options come on
    /// top of the watcher's.
    WalkResult run(const std::string &directory, unsigned options);

    /// What was filled.
    Inventory takeInventory() { return std::move(m_inventory); }
    /// What differs, then what is inventoried below the directory and was not met.
    std::vector<ChangedPath> takeDifferences(const std::string &directory);
    /// What could not be read for lack of rights.
    [[nodiscard]] const std::vector<std::string> &closed() const { return m_closed; }

    [[nodiscard]] bool cancelled() const override;
    std::error_code willReadDirectory(const std::string &directory, int descriptor) override;
    void found(const std::string &directory, std::string_view name,
               const std::optional<FileState> &state) override;
    bool shouldContinue(const std::error_code &error, const std::string &path) override;

private:
    void fill(const std::string &directory, std::string_view name, const std::optional<FileState> &state);

    const WatchFolderCore &m_core;
    FolderInventory &m_present;
    FileSystemEventStream &m_stream;
    ChangeReport &m_report;
    const Purpose m_purpose;
    const std::uint32_t m_walk;
    Inventory m_inventory;
    std::string m_directory;             // that was filled last
    Inventory::Names *m_names = nullptr; // of it
    std::vector<ChangedPath> m_differences;
    std::vector<std::string> m_closed;
};

} // namespace vantle
