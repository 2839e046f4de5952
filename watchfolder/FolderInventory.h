// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/Inventory.h"

#include <mutex>
#include <set>

namespace vantle {

/// A path, relative to the folder, that may have changed.
struct ChangedPath
{
    enum Cause {
        Unknown,        ///< none: a walk or a client asks for a look
        Foreign,        ///< an event of somebody else, or of nobody knows whom
        Own,            ///< this process and nobody else
        OwnRemoval,     ///< this process removed it or moved it away
        OwnReplacement, ///< this process did that, and made it or moved it here; nobody knows which came last
    };

    std::string path;
    Cause cause = Unknown;
    /// Only whether the item is there and what it is; its date is taken over in silence.
    bool existenceOnly = false;
};

/// What a look at a path brought to light.
struct Finding
{
    enum Difference { None, Added, Updated, Missing, Unreadable };

    Difference difference = None;
    bool isDirectory = false;
    bool wasDirectory = false;
};

/// The inventory of one folder with its lock, and the rule that compares it with the file system.
/// Thread-safe.
class FolderInventory
{
public:
    explicit FolderInventory(std::string folder) : m_folder(std::move(folder)) {}

    std::optional<Inventory::Record> find(std::string_view path) const;
    bool has(std::string_view path) const { return find(path).has_value(); }
    void
    forEach(const std::function<void(const std::string &path, const Inventory::Record &record)> &visit) const;
    std::vector<std::string> pathsBelow(std::string_view directory) const;

    /// When own and foreign events are told apart, a foreign one on an item that was last taken over from an
    /// own change counts as an update even if the dates are equal.
    void setOwnEventsAreTold(bool told);

    /// Whether an item is compared by file and size too, and not by its date alone.
    void setComparesIdentity(bool compares);

    /// Looks at a path. New and changed items are recorded; a missing one stays until removeIfMissing.
    Finding compare(const ChangedPath &changed);
    /// Removes an item that is still missing. None when it is not inventoried, or is back.
    std::optional<Inventory::Record> removeIfMissing(std::string_view path);

    /// Runs a change that this process makes to a path and records its outcome, under the lock.
    void performOwnChange(std::string_view path, const std::function<void()> &change);

    /// Before the whole folder is walked: notes which folder stands at the path. What is missing in another
    /// one has not been removed by this process.
    void noteFolder();
    /// A walk: begin, meet every entry, then ask for what was not met.
    std::uint32_t beginWalk();
    /// True when the entry is as recorded; otherwise it has to be compared.
    bool meet(std::string_view directory, std::string_view name, const FileState &state, std::uint32_t walk);
    std::vector<std::string> notMet(std::string_view directory, std::uint32_t walk) const;

    /// Own changes between these two are looked at again, since the replacement may be older than they are.
    void beginReplacement();
    void replace(Inventory replacement);
    void clear();

private:
    bool isNotedFolder() const;
    void takeOver(std::string_view path);
    void removeWithDescendants(std::string_view path);
    std::optional<FileState> readState(std::string_view path, std::error_code &error) const;

    const std::string m_folder;
    mutable std::mutex m_mutex;
    Inventory m_inventory;
    std::set<std::string, std::less<>> m_ownDuringReplacement;
    std::optional<FileState> m_notedFolder;
    std::uint32_t m_walk = 0;
    bool m_replacing = false;
    bool m_ownEventsAreTold = false;
    bool m_comparesIdentity = false;
};

} // namespace vantle
