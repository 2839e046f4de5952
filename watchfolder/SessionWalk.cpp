// SPDX-License-Identifier: MIT
#include "watchfolder/SessionWalk.h"

#include "base/Descriptor.h"
#include "base/NativePath.h"

#include <fcntl.h>

#include <cerrno>

namespace vantle {

SessionWalk::SessionWalk(const WatchFolderCore &core, FolderInventory &inventory,
                         FileSystemEventStream &stream, ChangeReport &report, Purpose purpose)
    : m_core(core), m_present(inventory), m_stream(stream), m_report(report), m_purpose(purpose),
      m_walk(purpose == Purpose::Compare ? inventory.beginWalk() : 0)
{
}

WalkResult SessionWalk::run(const std::string &directory, unsigned options)
{
    return walkFolder(m_core.folder, directory, m_core.enumerationOptions() | options, *this);
}

bool SessionWalk::cancelled() const
{
    return m_report.cancelled() || m_core.cancelRequested;
}

std::error_code SessionWalk::willReadDirectory(const std::string &directory, int descriptor)
{
    if (directory.empty())
        return {};
    return m_stream.watchDirectory(m_core.folder + '/' + directory, descriptor);
}

bool SessionWalk::shouldContinue(const std::error_code &error, const std::string &path)
{
    if (error.value() == EACCES) {
        std::string closed = path.substr(std::min(path.size(), m_core.folder.size() + 1));
        // What is marked above a directory may tell of its mode by what the kernel calls it.
        const Descriptor directory(open(path.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (directory.isOpen())
            willReadDirectory(closed, directory.get());
        m_closed.push_back(std::move(closed));
    }
    return m_report.shouldContinue(error, path);
}

void SessionWalk::found(const std::string &directory, std::string_view name,
                        const std::optional<FileState> &state)
{
    if (m_purpose == Purpose::Fill)
        fill(directory, name, state);
    else if (state && !m_present.meet(directory, name, *state, m_walk))
        m_differences.push_back({.path = joinPath(directory, name), .seen = state});
}

void SessionWalk::fill(const std::string &directory, std::string_view name,
                       const std::optional<FileState> &state)
{
    if (m_core.shouldIgnore(directory, name))
        return;
    if (m_names == nullptr || m_directory != directory) {
        m_directory = directory;
        m_names = &m_inventory.namesForUpdate(directory);
    }
    Inventory::makeRoom(*m_names);
    m_names->try_emplace(std::string(name), Inventory::Record{.state = state.value_or(FileState()),
                                                              .hasState = state.has_value()});
}

std::vector<ChangedPath> SessionWalk::takeDifferences(const std::string &directory)
{
    for (std::string &missing : m_present.notMet(directory, m_walk))
        m_differences.push_back({.path = std::move(missing)});
    return std::move(m_differences);
}

} // namespace vantle
