// SPDX-License-Identifier: MIT
#include "watchfolder/PendingDirectories.h"

namespace vantle {

void PendingDirectories::addPathToInventory(std::string path)
{
    if (!path.ends_with('/'))
        path += '/';
    const std::lock_guard lock(m_mutex);
    if (isCovered(path))
        return;
    auto below = m_orderByPath.lower_bound(path);
    while (below != m_orderByPath.end() && below->first.starts_with(path)) {
        m_pathByOrder.erase(below->second);
        below = m_orderByPath.erase(below);
    }
    m_pathByOrder.emplace(m_nextOrder, path);
    m_orderByPath.emplace(std::move(path), m_nextOrder++);
}

bool PendingDirectories::isCovered(const std::string &path) const
{
    for (size_t slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1)) {
        if (m_orderByPath.contains(path.substr(0, slash + 1)))
            return true;
    }
    return false;
}

std::optional<std::string> PendingDirectories::dequeueNextPathToInventory()
{
    const std::lock_guard lock(m_mutex);
    if (m_pathByOrder.empty())
        return std::nullopt;
    auto first = m_pathByOrder.extract(m_pathByOrder.begin());
    m_orderByPath.erase(first.mapped());
    return std::move(first.mapped());
}

std::vector<std::string> PendingDirectories::pendingPathsToInventory() const
{
    const std::lock_guard lock(m_mutex);
    std::vector<std::string> paths;
    for (const auto &[order, path] : m_pathByOrder)
        paths.push_back(path);
    return paths;
}

void PendingDirectories::clear()
{
    const std::lock_guard lock(m_mutex);
    m_orderByPath.clear();
    m_pathByOrder.clear();
}

} // namespace vantle
