// SPDX-License-Identifier: MIT
#include "watchfolder/WatchFolderWalks.h"

#include "watchfolder/NativePath.h"
#include "watchfolder/WatchFolderCore.h"

namespace vantle {

bool WatchingWalk::cancelled() const
{
    return m_report.cancelled() || m_core.cancelRequested;
}

std::error_code WatchingWalk::willReadDirectory(const std::string &directory, int descriptor)
{
    if (directory.empty() || m_stream == nullptr)
        return {};
    return m_stream->watchDirectory(m_core.folder + '/' + directory, descriptor);
}

bool WatchingWalk::shouldContinue(const std::error_code &error, const std::string &path)
{
    return m_report.shouldContinue(error, path);
}

void FirstEnumeration::found(const std::string &directory, std::string_view name,
                             const std::optional<FileState> &state)
{
    if (m_core.shouldIgnore(directory, name))
        return;
    if (m_names == nullptr || m_directory != directory) {
        m_directory = directory;
        m_names = &m_inventory.namesForUpdate(directory);
    }
    // Growing fourfold and not twofold halves what filling a large table costs.
    if (m_names->size() >= m_names->bucket_count())
        m_names->reserve(4 * m_names->size());
    m_names->try_emplace(std::string(name), Inventory::Record{.state = state.value_or(FileState()),
                                                              .hasState = state.has_value()});
}

ReInventory::ReInventory(WatchFolderCore &core, FileSystemEventStream *stream, ChangeReport &report)
    : WatchingWalk(core, stream, report), m_walk(core.inventory.beginWalk())
{
}

void ReInventory::found(const std::string &directory, std::string_view name,
                        const std::optional<FileState> &state)
{
    if (state && !m_core.inventory.meet(directory, name, *state, m_walk))
        m_differences.push_back({.path = joinPath(directory, name)});
}

std::vector<ChangedPath> ReInventory::takeDifferences(const std::string &directory)
{
    for (std::string &missing : m_core.inventory.notMet(directory, m_walk))
        m_differences.push_back({.path = std::move(missing)});
    return std::move(m_differences);
}

} // namespace vantle
