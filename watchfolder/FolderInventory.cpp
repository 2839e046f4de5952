// SPDX-License-Identifier: MIT
#include "watchfolder/FolderInventory.h"

#include "watchfolder/NativePath.h"
#include "watchfolder/StateBelow.h"

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

void FolderInventory::setOwnEventsAreTold(bool told)
{
    const std::lock_guard lock(m_mutex);
    m_ownEventsAreTold = told;
}

void FolderInventory::setComparesIdentity(bool compares)
{
    const std::lock_guard lock(m_mutex);
    m_comparesIdentity = compares;
}

Finding FolderInventory::compare(const ChangedPath &changed)
{
    const std::lock_guard lock(m_mutex);
    std::error_code error;
    const auto state = readState(changed.path, error);
    Inventory::Record *record = m_inventory.find(changed.path);
    const bool mayBeOwnRemoval =
        changed.cause == ChangedPath::OwnRemoval || changed.cause == ChangedPath::OwnReplacement;
    const bool isOwn = changed.cause == ChangedPath::Own || mayBeOwnRemoval;

    if (!state) {
        if (!saysMissing(error))
            return {.difference = Finding::Unreadable};
        if (record == nullptr)
            return {};
        // With the whole folder gone or replaced, nobody can say that it was this process who removed the
        // item.
        if (mayBeOwnRemoval && isNotedFolder() && !record->isTakenOver) {
            removeWithDescendants(changed.path);
            return {};
        }
        return {.difference = Finding::Missing, .wasDirectory = record->state.isDirectory};
    }
    if (record == nullptr) {
        // Somebody else has made it anew since; the event of that is on its way.
        if (changed.cause == ChangedPath::OwnRemoval)
            return {};
        m_inventory.put(changed.path, {.state = *state, .walk = m_walk, .own = isOwn, .isUnreported = isOwn});
        return {.difference = isOwn ? Finding::None : Finding::Added, .isDirectory = state->isDirectory};
    }

    const bool becameAnother = state->isDirectory != record->state.isDirectory;
    bool differs = becameAnother || (!changed.existenceOnly &&
                                     (!record->hasState || state->modified != record->state.modified));
    const bool hidesForeign = record->own && m_ownEventsAreTold && changed.cause == ChangedPath::Foreign;
    if ((record->own || m_comparesIdentity) && !changed.existenceOnly)
        differs = differs || hidesForeign || state->inode != record->state.inode ||
                  state->size != record->state.size;
    const bool isNews = differs && !isOwn;
    const bool isNew = isNews && std::exchange(record->isUnreported, false);
    const Finding finding{.difference = isNew    ? Finding::Added
                                        : isNews ? Finding::Updated
                                                 : Finding::None,
                          .isDirectory = state->isDirectory,
                          .wasDirectory = record->state.isDirectory};
    record->state = *state;
    record->hasState = true;
    record->own = isOwn || (record->own && changed.cause == ChangedPath::Unknown && !differs);
    return finding;
}

std::optional<Inventory::Record> FolderInventory::removeIfMissing(std::string_view path)
{
    const std::lock_guard lock(m_mutex);
    const Inventory::Record *record = m_inventory.find(path);
    std::error_code error;
    if (record == nullptr || readState(path, error) || !saysMissing(error))
        return std::nullopt;
    const Inventory::Record removed = *record;
    m_inventory.remove(path);
    return removed;
}

void FolderInventory::performOwnChange(std::string_view path, const std::function<void()> &change)
{
    const std::lock_guard lock(m_mutex);
    // Whatever the change did before it failed was done by this process too.
    struct TakeOver
    {
        FolderInventory *inventory;
        std::string_view path;
        ~TakeOver() { inventory->takeOver(path); }
    } const takeOver{this, path};
    if (m_replacing)
        m_ownDuringReplacement.emplace(path);
    change();
}

void FolderInventory::takeOver(std::string_view path)
{
    std::error_code error;
    if (const auto state = readState(path, error))
        m_inventory.put(path, {.state = *state, .walk = m_walk, .own = true, .isTakenOver = true});
    else if (saysMissing(error))
        removeWithDescendants(path);
}

void FolderInventory::noteFolder()
{
    const std::lock_guard lock(m_mutex);
    std::error_code error;
    m_notedFolder = readFileState(AT_FDCWD, m_folder.c_str(), Follow::Links, error);
}

bool FolderInventory::isNotedFolder() const
{
    std::error_code error;
    const auto present = readFileState(AT_FDCWD, m_folder.c_str(), Follow::Links, error);
    return present && m_notedFolder && present->inode == m_notedFolder->inode &&
           present->device == m_notedFolder->device;
}

std::uint32_t FolderInventory::beginWalk()
{
    const std::lock_guard lock(m_mutex);
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
    const FileState &known = record.state;
    return record.hasState && known.modified == state.modified && known.isDirectory == state.isDirectory &&
           ((!record.own && !m_comparesIdentity) || (known.inode == state.inode && known.size == state.size));
}

std::vector<std::string> FolderInventory::notMet(std::string_view directory, std::uint32_t walk) const
{
    const std::lock_guard lock(m_mutex);
    std::vector<std::string> paths = m_inventory.pathsBelow(directory);
    std::erase_if(paths,
                  [this, walk](const std::string &path) { return m_inventory.find(path)->walk == walk; });
    return paths;
}

void FolderInventory::beginReplacement()
{
    const std::lock_guard lock(m_mutex);
    m_replacing = true;
    m_ownDuringReplacement.clear();
}

void FolderInventory::replace(Inventory replacement)
{
    const std::lock_guard lock(m_mutex);
    std::swap(m_inventory, replacement);
    m_replacing = false;
    for (const std::string &path : m_ownDuringReplacement)
        takeOver(path);
    m_ownDuringReplacement.clear();
}

void FolderInventory::clear()
{
    const std::lock_guard lock(m_mutex);
    m_inventory.clear();
    m_replacing = false; // its inventory will not come
    m_ownDuringReplacement.clear();
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
