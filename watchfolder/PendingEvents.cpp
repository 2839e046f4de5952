// SPDX-License-Identifier: MIT
#include "watchfolder/PendingEvents.h"

#include "watchfolder/KernelEventTable.h"

namespace vantle {

void PendingEvents::note(std::string_view directory, std::string_view name, quint32 kernelMask, bool own)
{
    std::string path;
    path.reserve(directory.size() + 1 + name.size());
    path.append(directory).append(1, '/').append(name);
    const auto [node, isNew] = m_entries.try_emplace(std::move(path));
    if (isNew)
        m_order.push_back(&*node);

    Entry &entry = node->second;
    (own ? entry.ownFlags : entry.foreignFlags) |= eventFlags(kernelMask);
    // The flag of a renaming does not say which way; for an own one it matters.
    if (own && (kernelMask & departingEvents))
        entry.ownFlags |= ItemRemoved;
    if (own && (kernelMask & arrivingEvents))
        entry.ownFlags |= ItemCreated;
    if (isDirectoryEvent(kernelMask))
        return;
    // The kernel merges: one record can say that a file was created and closed.
    if (kernelMask & completingEvents) {
        entry.held = false;
    } else if (kernelMask & creatingEvents) {
        entry.held = true;
        entry.modified = entry.lookedAt = false;
    }
    entry.modified = entry.modified || (kernelMask & writingEvents) != 0;
}

std::vector<VRXWatchFolderEvent> PendingEvents::take(bool settle)
{
    m_wantsSecondLook = false;
    std::vector<VRXWatchFolderEvent> events;
    events.reserve(m_order.size());
    decltype(m_order) held;
    for (auto *node : m_order) {
        Entry &entry = node->second;
        if (entry.held && staysHeld(node->first, entry, settle)) {
            held.push_back(node);
            continue;
        }
        const quint32 flags = entry.foreignFlags ? entry.foreignFlags : entry.ownFlags | OwnEvent;
        events.emplace_back(std::move(m_entries.extract(m_entries.find(node->first)).key()), 0, flags,
                            ++m_lastId);
    }
    m_order = std::move(held);
    return events;
}

bool PendingEvents::staysHeld(const std::string &path, Entry &entry, bool settle)
{
    const OpenFile file = m_probe(path);
    if (file == OpenFile::Complete)
        return false;
    if (file == OpenFile::Empty || entry.modified)
        return true;
    // Content without a write: complete when it was linked in, unless the write is still in the kernel's
    // queue.
    if (settle || entry.lookedAt)
        return false;
    entry.lookedAt = m_wantsSecondLook = true;
    return true;
}

void PendingEvents::clear()
{
    m_entries.clear();
    m_order.clear();
    m_wantsSecondLook = false;
}

} // namespace vantle
