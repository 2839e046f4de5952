// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/ChangeReport.h"
#include "watchfolder/FileSystemEventStream.h"
#include "watchfolder/FolderInventory.h"
#include "watchfolder/FolderWalk.h"

namespace vantle {

class WatchFolderCore;

/// A walk through a watched folder: puts each directory under watch before it is read, so that what changes
/// after the reading comes as an event.
class WatchingWalk : public FolderWalkVisitor
{
public:
    WatchingWalk(WatchFolderCore &core, FileSystemEventStream *stream, ChangeReport &report)
        : m_core(core), m_stream(stream), m_report(report)
    {
    }

    bool cancelled() const final;
    std::error_code willReadDirectory(const std::string &directory, int descriptor) final;
    bool shouldContinue(const std::error_code &error, const std::string &path) final;

protected:
    WatchFolderCore &m_core;

private:
    FileSystemEventStream *const m_stream;
    ChangeReport &m_report;
};

/// Fills a new inventory.
class FirstEnumeration final : public WatchingWalk
{
public:
    using WatchingWalk::WatchingWalk;

    Inventory takeInventory() { return std::move(m_inventory); }
    void found(const std::string &directory, std::string_view name,
               const std::optional<FileState> &state) override;

private:
    Inventory m_inventory;
    std::string m_directory;
    Inventory::Names *m_names = nullptr; // of m_directory
};

/// Finds what differs from the inventory and has to be compared.
class ReInventory final : public WatchingWalk
{
public:
    ReInventory(WatchFolderCore &core, FileSystemEventStream *stream, ChangeReport &report);

    void found(const std::string &directory, std::string_view name,
               const std::optional<FileState> &state) override;
    /// What was found to differ, then what is inventoried below the directory and was not met.
    std::vector<ChangedPath> takeDifferences(const std::string &directory);

private:
    const std::uint32_t m_walk;
    std::vector<ChangedPath> m_differences;
};

} // namespace vantle
