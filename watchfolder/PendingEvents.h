// SPDX-License-Identifier: MIT
#pragma once

#include "base/OpenFileProbe.h"
#include "watchfolder/VRXWatchFolderEvent.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vantle {

/// Collects what the kernel says within one window: one event per path, in the order in which the paths were
/// first heard of. A new regular file is held back until its writer closes it; an empty one of which nobody
/// can tell whether it has a writer, for two seconds after its last event. Not synchronised.
class PendingEvents
{
public:
    using Clock = std::chrono::steady_clock;
    using Probe = std::function<OpenFile(const std::string &path)>;

    explicit PendingEvents(Probe probe) : m_probe(std::move(probe)) {}

    /// kernelMask is in the kernel's bits; own says that this process caused the event.
    void note(std::string_view directory, std::string_view name, quint32 kernelMask, bool own,
              Clock::time_point now);

    /// Drops what a comparison of the whole folder will tell just as well: what others alone did to items
    /// that are not held back.
    void dropCompared();
    /// The events that can be reported. Settling decides at once what would otherwise get a second look.
    std::vector<VRXWatchFolderEvent> take(bool settle, Clock::time_point now);
    /// In how long take() has to be called again although nothing new may come.
    [[nodiscard]] std::optional<Clock::duration> nextLook() const { return m_nextLook; }

    void clear();

private:
    struct Entry
    {
        quint32 foreignFlags = 0;
        quint32 ownFlags = 0;
        bool held = false;      // set by a creation, cleared by closing, moving and removal
        bool modified = false;  // a write was seen since the creation, so there is a writer, who will close
        bool lookedAt = false;  // found with content, but no write of it was seen: likely linked in
        Clock::time_point last; // when the last event came
    };

    bool staysHeld(const std::string &path, Entry &entry, bool settle, Clock::time_point now);
    void lookAgainIn(Clock::duration delay);

    const Probe m_probe;
    std::unordered_map<std::string, Entry> m_entries;
    std::vector<std::pair<const std::string, Entry> *> m_order; // nodes of the map stay where they are
    quint64 m_lastId = 0;
    std::optional<Clock::duration> m_nextLook;
};

} // namespace vantle
