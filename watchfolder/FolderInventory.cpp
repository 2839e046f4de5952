// SPDX-License-Identifier: MIT
#include "watchfolder/FolderInventory.h"

#include "base/NativePath.h"
#include "watchfolder/StateBelow.h"

#include <algorithm>
#include <utility>

#include <fcntl.h>

namespace vantle {

std::optional<Inventory::Record> FolderInventory::find(std::string_view path) const
{
    const std::lock_guard lock(m_mutex);
    const Inventory::Record *record = m_inventory.find(path);
    return record == nullptr ? std::nullopt : std::optional(*record);
}

void FolderInventory::forEach(
    const std::function<void(const std::string &, const Inventory::Record &)> &visit) const
{
    const std::lock_guard lock(m_mutex);
    m_inventory.forEach(visit);
}

std::vector<std::string> FolderInventory::pathsBelow(std::string_view directory) const
{
    const std::lock_guard lock(m_mutex);
    return m_inventory.pathsBelow(directory);
}

void FolderInventory::setComparesIdentity(bool compares)
{
    const std::lock_guard lock(m_mutex);
    m_comparesIdentity = compares;
}

Finding FolderInventory::compare(const ChangedPath &changed)
{
    for (;;) {
        std::uint64_t ownChanges = 0;
        std::optional<FileState> noted;
        {
            const std::lock_guard lock(m_mutex);
            if (Bracket *const bracket = bracketAround(changed.path)) {
                bracket->postponed.push_back(changed);
                bracket->postponed.back().seen.reset(); // another walk may have begun by then
                return {};
            }
            if (changed.seen && m_ownChanges == m_ownChangesBeforeWalk)
                return judge(changed, changed.cause, changed.seen, false);
            ownChanges = m_ownChanges;
            noted = m_notedFolder;
        }
        std::error_code error;
        const auto state = readState(changed.path, error);
        const bool isMissing = !state && saysMissing(error);
        LookCause cause = changed.cause;
        // With the whole folder gone or replaced, nobody can say that what is there now, or is missing, is
        // this process's doing: its events are those of the other folder.
        if (cause != LookCause::look && cause != LookCause::foreign && noted && !isNotedFolder(noted))
            cause = LookCause::look;
        const std::lock_guard lock(m_mutex);
        if (m_ownChanges == ownChanges)
            return judge(changed, cause, state, isMissing);
    }
}

Finding FolderInventory::judge(const ChangedPath &changed, LookCause cause,
                               const std::optional<FileState> &state, bool isMissing)
{
    Inventory::Record *const record = m_inventory.find(changed.path);
    const Knowledge known = record == nullptr ? Knowledge::nothing : record->knowledge;
    OnDisk found = isMissing ? OnDisk::missing : OnDisk::unreadable;
    if (state && record != nullptr && changed.existenceOnly) {
        found = state->isDirectory == record->state.isDirectory ? OnDisk::same : OnDisk::other;
        if (cause == LookCause::foreign && found == OnDisk::same)
            cause = LookCause::look;
    } else if (state) {
        found = record != nullptr && isAsRecorded(*record, *state) ? OnDisk::same : OnDisk::other;
    }
    const LookMeaning meaning = meaningOfLook(cause, known, found);
    const Finding finding{.report = meaning.report,
                          .isUnreadable = found == OnDisk::unreadable,
                          .isDirectory = state && state->isDirectory,
                          .wasDirectory = record != nullptr && record->state.isDirectory};
    if (state && record != nullptr) {
        record->state = *state;
        record->hasState = true;
        record->knowledge = meaning.record;
    } else if (state && meaning.record != Knowledge::nothing) {
        m_inventory.put(changed.path, {.state = *state, .walk = m_walk, .knowledge = meaning.record});
    } else if (record != nullptr && meaning.record == Knowledge::nothing) {
        removeWithDescendants(changed.path);
        return {};
    }
    return finding;
}

/// Items that this process has changed are always compared by file and size: their dates are not enough to
/// notice another file.
bool FolderInventory::isAsRecorded(const Inventory::Record &record, const FileState &state) const
{
    const FileState &known = record.state;
    if (!record.hasState || known.modified != state.modified || known.isDirectory != state.isDirectory)
        return false;
    if (m_comparesIdentity && known.changed != state.changed)
        return false;
    return (!m_comparesIdentity && record.knowledge == Knowledge::told) ||
           (known.inode == state.inode && known.size == state.size);
}

std::optional<Inventory::Record> FolderInventory::removeIfMissing(std::string_view path)
{
    for (;;) {
        std::uint64_t ownChanges = 0;
        {
            const std::lock_guard lock(m_mutex);
            if (Bracket *const bracket = bracketAround(path)) {
                bracket->postponed.push_back({.path = std::string(path)});
                return std::nullopt;
            }
            if (m_inventory.find(path) == nullptr)
                return std::nullopt;
            ownChanges = m_ownChanges;
        }
        std::error_code error;
        if (readState(path, error) || !saysMissing(error))
            return std::nullopt;
        const std::lock_guard lock(m_mutex);
        if (m_ownChanges != ownChanges)
            continue;
        const Inventory::Record *record = m_inventory.find(path);
        if (record == nullptr)
            return std::nullopt;
        const Inventory::Record removed = *record;
        m_inventory.remove(path);
        return removed;
    }
}

FolderInventory::Bracket *FolderInventory::bracketAround(std::string_view path)
{
    for (auto &[changed, bracket] : m_brackets) {
        if (isAtOrBelow(path, changed))
            return &bracket;
    }
    return nullptr;
}

void FolderInventory::beginOwnChange(const std::string &path)
{
    const std::lock_guard lock(m_mutex);
    ++m_brackets[path].depth;
    ++m_ownChanges;
}

std::vector<ChangedPath> FolderInventory::endOwnChange(const std::string &path, const OwnOutcome &outcome)
{
    const OwnOutcome present = presentOutcome(path);
    const std::lock_guard lock(m_mutex);
    ++m_ownChanges;
    const auto found = m_brackets.find(path);
    Bracket &bracket = found->second;
    if (outcome.kind != OwnOutcome::unchanged)
        bracket.outcomes.push_back(outcome);
    if (--bracket.depth > 0)
        return {}; // whoever ends last looks
    // Of changes that overlapped nobody knows which came last.
    const auto exact =
        std::find_if(bracket.outcomes.begin(), bracket.outcomes.end(), [&present](const OwnOutcome &made) {
            return made.kind == present.kind &&
                   (made.kind == OwnOutcome::removed || isSameContent(made.item, present.item));
        });
    if (!bracket.outcomes.empty())
        record(path, exact != bracket.outcomes.end() ? *exact : bracket.outcomes.back());
    if (exact == bracket.outcomes.end())
        bracket.postponed.push_back({.path = path});
    std::vector<ChangedPath> postponed = std::move(bracket.postponed);
    m_brackets.erase(found);
    return postponed;
}

OwnOutcome FolderInventory::presentOutcome(std::string_view path) const
{
    std::error_code error;
    if (const auto state = readState(path, error))
        return {OwnOutcome::put, *state};
    return {saysMissing(error) ? OwnOutcome::removed : OwnOutcome::unchanged, {}};
}

void FolderInventory::record(std::string_view path, const OwnOutcome &outcome)
{
    if (m_replacing)
        m_outcomesWhileReplacing.insert_or_assign(std::string(path), outcome);
    if (outcome.kind == OwnOutcome::put)
        m_inventory.put(path, {.state = outcome.item, .walk = m_walk, .knowledge = Knowledge::ownExact});
    else
        removeWithDescendants(path);
}

void FolderInventory::noteFolder()
{
    std::error_code error;
    const auto present = readFileState(AT_FDCWD, m_folder.c_str(), Follow::Links, error);
    const std::lock_guard lock(m_mutex);
    const auto noted = std::exchange(m_notedFolder, present);
    if (!noted || (present && present->inode == noted->inode && present->device == noted->device))
        return;
    // What this process has made, and nobody was told of, was in the other folder.
    for (const std::string &path : m_inventory.pathsBelow({})) {
        if (m_inventory.find(path)->knowledge == Knowledge::untold)
            m_inventory.remove(path);
    }
}

bool FolderInventory::isNotedFolder(const std::optional<FileState> &noted) const
{
    std::error_code error;
    const auto present = readFileState(AT_FDCWD, m_folder.c_str(), Follow::Links, error);
    return present && noted && present->inode == noted->inode && present->device == noted->device;
}

std::uint32_t FolderInventory::beginWalk()
{
    const std::lock_guard lock(m_mutex);
    m_ownChangesBeforeWalk = m_ownChanges;
    return ++m_walk;
}

bool FolderInventory::meet(std::string_view directory, std::string_view name, const FileState &state,
                           std::uint32_t walk)
{
    const std::lock_guard lock(m_mutex);
    Inventory::Names *names = m_inventory.names(directory);
    if (names == nullptr)
        return false;
    const auto found = names->find(name);
    if (found == names->end())
        return false;
    Inventory::Record &record = found->second;
    record.walk = walk;
    return isAsRecorded(record, state);
}

std::vector<std::string> FolderInventory::notMet(std::string_view directory, std::uint32_t walk) const
{
    const std::lock_guard lock(m_mutex);
    std::vector<std::string> paths;
    m_inventory.forEachBelow(
        directory, [walk](const Inventory::Record &record) { return record.walk != walk; },
        [&paths](const std::string &path, const Inventory::Record &) { paths.push_back(path); });
    return paths;
}

void FolderInventory::beginReplacement()
{
    const std::lock_guard lock(m_mutex);
    m_replacing = true;
    m_outcomesWhileReplacing.clear();
}

std::vector<ChangedPath> FolderInventory::replace(Inventory replacement)
{
    const std::lock_guard lock(m_mutex);
    std::swap(m_inventory, replacement);
    m_replacing = false;
    std::vector<ChangedPath> changed;
    for (const auto &[path, outcome] : std::exchange(m_outcomesWhileReplacing, {})) {
        record(path, outcome);
        changed.push_back({.path = path});
    }
    return changed;
}

void FolderInventory::clear()
{
    const std::lock_guard lock(m_mutex);
    m_inventory.clear();
    m_replacing = false; // its inventory will not come
    m_outcomesWhileReplacing.clear();
}

void FolderInventory::removeWithDescendants(std::string_view path)
{
    const Inventory::Record *record = m_inventory.find(path);
    if (record != nullptr && record->state.isDirectory) {
        for (const std::string &below : m_inventory.pathsBelow(path))
            m_inventory.remove(below);
    }
    m_inventory.remove(path);
}

std::optional<FileState> FolderInventory::readState(std::string_view path, std::error_code &error) const
{
    return readFileStateBelow(m_folder, path, error);
}

} // namespace vantle
