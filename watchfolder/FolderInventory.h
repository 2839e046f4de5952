// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/Inventory.h"

#include <map>
#include <mutex>
#include <optional>

namespace vantle {

/// A path, relative to the folder, that may have changed.
struct ChangedPath
{
    std::string path;
    LookCause cause = LookCause::look;
    /// Only presence and kind are compared; a new date is recorded without a report.
    bool existenceOnly = false;
    /// As the last walk met it. What changed since comes as an event.
    std::optional<FileState> seen = {};
};

/// What a look at a path brought to light.
struct Finding
{
    Report report = Report::none;
    /// It could not be looked at: nothing is known of it until a mode changes.
    bool isUnreadable = false;
    bool isDirectory = false;
    bool wasDirectory = false;
};

/// What an own change left at its path.
struct OwnOutcome
{
    enum Kind {
        unchanged, ///< it failed before it changed anything
        put,       ///< exactly this item
        removed,   ///< nothing
    };

    Kind kind = unchanged;
    FileState item;
};

/// The inventory of one folder with its lock, and the rule that compares it with the file system.
/// Thread-safe.
class FolderInventory
{
public:
    explicit FolderInventory(std::string folder) : m_folder(std::move(folder)) {}

    [[nodiscard]] std::optional<Inventory::Record> find(std::string_view path) const;
    [[nodiscard]] bool has(std::string_view path) const { return find(path).has_value(); }
    void
    forEach(const std::function<void(const std::string &path, const Inventory::Record &record)> &visit) const;
    [[nodiscard]] std::vector<std::string> pathsBelow(std::string_view directory) const;

    /// Whether an item is compared by file, size and change time too, and not by its date alone.
    void setComparesIdentity(bool compares);

    /// Looks at a path and applies what that means (see LookTable.h). New and changed items are recorded; a
    /// missing one stays until removeIfMissing. Finds nothing where an own change goes on: the look is made
    /// up for when that has ended.
    Finding compare(const ChangedPath &changed);
    /// Removes an item that is still missing. None when it is not inventoried, or is back.
    std::optional<Inventory::Record> removeIfMissing(std::string_view path);

    /// A change that this process makes to a path, and to what is below it, begins. Nothing is locked; such
    /// changes may overlap.
    void beginOwnChange(const std::string &path);
    /// It has ended. Returns what has to be compared now: looks that came meanwhile, and the path itself when
    /// what is there is not exactly the outcome, which is somebody else's doing then.
    std::vector<ChangedPath> endOwnChange(const std::string &path, const OwnOutcome &outcome);
    /// The item at a path as it is now, as the outcome of an own change.
    [[nodiscard]] OwnOutcome presentOutcome(std::string_view path) const;

    /// Notes the folder's identity before it is walked. Where another folder stands there later, this process
    /// has not removed what is missing in it.
    void noteFolder();
    /// A walk: begin, meet every entry, then ask for what was not met.
    std::uint32_t beginWalk();
    /// True when the entry is as recorded; otherwise it has to be compared.
    bool meet(std::string_view directory, std::string_view name, const FileState &state, std::uint32_t walk);
    [[nodiscard]] std::vector<std::string> notMet(std::string_view directory, std::uint32_t walk) const;

    /// Own changes between these two are applied to the replacement too, which may be older than they are.
    /// Returns their paths: the replacement may have been newer.
    void beginReplacement();
    std::vector<ChangedPath> replace(Inventory replacement);
    void clear();

private:
    struct Bracket
    {
        int depth = 0; ///< own changes of the path that overlap
        std::vector<OwnOutcome> outcomes;
        std::vector<ChangedPath> postponed;
    };

    [[nodiscard]] bool isNotedFolder(const std::optional<FileState> &noted) const;
    [[nodiscard]] bool isAsRecorded(const Inventory::Record &record, const FileState &state) const;
    Bracket *bracketAround(std::string_view path);
    Finding judge(const ChangedPath &changed, LookCause cause, const std::optional<FileState> &state,
                  bool isMissing);
    void record(std::string_view path, const OwnOutcome &outcome);
    void removeWithDescendants(std::string_view path);
    [[nodiscard]] std::optional<FileState> readState(std::string_view path, std::error_code &error) const;

    const std::string m_folder;
    /// Never held while the file system is asked.
    mutable std::mutex m_mutex;
    Inventory m_inventory;
    std::map<std::string, Bracket, std::less<>> m_brackets;
    std::uint64_t m_ownChanges = 0; // beginnings and ends; a look that one came between is repeated
    std::uint64_t m_ownChangesBeforeWalk = 0;
    std::map<std::string, OwnOutcome, std::less<>> m_outcomesWhileReplacing;
    std::optional<FileState> m_notedFolder;
    std::uint32_t m_walk = 0;
    bool m_replacing = false;
    bool m_comparesIdentity = false;
};

} // namespace vantle
