// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace vantle {

/// The directories that wait for their re-inventory, in the order in which they were asked for. No entry lies
/// below another one. Thread-safe.
class PendingDirectories
{
public:
    /// Adds a path, absolute or relative; a missing slash at its end is put there. Does nothing when the path
    /// or one above it is waiting; replaces what waits below it.
    void addPathToInventory(std::string path);
    std::optional<std::string> dequeueNextPathToInventory();
    [[nodiscard]] std::vector<std::string> pendingPathsToInventory() const;
    void clear();

private:
    [[nodiscard]] bool isCovered(const std::string &path) const;

    mutable std::mutex m_mutex;
    std::map<std::string, unsigned long> m_orderByPath;
    std::map<unsigned long, std::string> m_pathByOrder;
    unsigned long m_nextOrder = 0;
};

} // namespace vantle
