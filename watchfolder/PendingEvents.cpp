// SPDX-License-Identifier: MIT
#include "watchfolder/PendingEvents.h"

#include "watchfolder/KernelEventTable.h"

#include <algorithm>

namespace vantle {

namespace {

// Whoever writes the file does so by then, and the write is an event.
constexpr std::chrono::seconds kQuietForUnknown{2};

} // namespace

void PendingEvents::note(std::string_view directory, std::string_view name, quint32 kernelMask, bool own,
                         Clock::time_point now)
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
    if (own && (kernelMask & kDepartingEvents))
        entry.ownFlags |= ItemRemoved;
    if (own && (kernelMask & kArrivingEvents))
        entry.ownFlags |= ItemCreated;
    if (isDirectoryEvent(kernelMask))
        return;
    // The kernel merges: one record can say that a file was created and closed.
    if (kernelMask & kCompletingEvents) {
        entry.held = false;
    } else if (kernelMask & kCreatingEvents) {
        entry.held = true;
        entry.modified = entry.lookedAt = false;
    }
    entry.last = now;
    entry.modified = entry.modified || (kernelMask & kWritingEvents) != 0;
}

void PendingEvents::dropCompared()
{
    std::erase_if(m_order, [this](const auto *node) {
        const Entry &entry = node->second;
        if (entry.held || entry.ownFlags != 0)
            return false;
        m_entries.erase(m_entries.find(node->first));
        return true;
    });
}

std::vector<VRXWatchFolderEvent> PendingEvents::take(bool settle, Clock::time_point now)
{
    m_nextLook.reset();
    std::vector<VRXWatchFolderEvent> events;
    events.reserve(m_order.size());
    decltype(m_order) held;
    for (auto *node : m_order) {
        Entry &entry = node->second;
        if (entry.held && staysHeld(node->first, entry, settle, now)) {
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

bool PendingEvents::staysHeld(const std::string &path, Entry &entry, bool settle, Clock::time_point now)
{
    switch (m_probe(path)) {
    case OpenFile::Complete:
        return false;
    case OpenFile::Empty:
        return true;
    case OpenFile::Unknown:
        if (now - entry.last >= kQuietForUnknown)
            return false;
        lookAgainIn(kQuietForUnknown - (now - entry.last));
        return true;
    case OpenFile::Written:
        break;
    }
    if (entry.modified)
        return true;
    // Content without a write: complete when it was linked in, unless the write is still in the kernel's
    // queue.
    if (settle || entry.lookedAt)
        return false;
    entry.lookedAt = true;
    lookAgainIn(Clock::duration::zero());
    return true;
}

void PendingEvents::lookAgainIn(Clock::duration delay)
{
    m_nextLook = std::min(m_nextLook.value_or(delay), delay);
}

void PendingEvents::clear()
{
    m_entries.clear();
    m_order.clear();
    m_nextLook.reset();
}

} // namespace vantle
