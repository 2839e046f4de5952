// SPDX-License-Identifier: MIT
#include "fuzz/FuzzTarget.h"

#include "watchfolder/KernelRecords.h"
#include "watchfolder/PendingEvents.h"
#include "watchfolder/WatchedDirectories.h"

#include <sys/fanotify.h>
#include <sys/inotify.h>

#include <chrono>
#include <cstring>
#include <iterator>
#include <memory>
#include <set>
#include <string>

// Takes what follows the first byte for a kernel queue's content: of inotify when that byte is 'i', of
// fanotify otherwise.

namespace vantle::fuzz {
namespace {

constexpr int kOwnProcess = 1;

bool isWithin(std::string_view part, std::string_view whole)
{
    return part.empty() ||
           (part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size());
}

/// Follows events as an event stream does; opened files answer differently each time.
class Follower
{
public:
    void note(std::string_view directory, std::string_view name, quint32 mask, bool own)
    {
        require(name.find('\0') == std::string_view::npos, "a name ends at its padding");
        const std::string key(directory);
        const std::string path = "/watched/" + key;
        m_directories.add(key, path, WatchRole::Below);
        const auto *known = m_directories.find(key);
        require(known != nullptr && known->path == path, "a marked directory is known");
        if (name == "." || name.empty())
            m_directories.removeTree(path, [](const std::string &) {});
        m_pending.note("/watched", name, mask, own, m_now);
        m_names.emplace(name);
    }

    void finish()
    {
        std::set<std::string> reported;
        for (const bool settle : {false, true, true}) {
            m_now += std::chrono::seconds(1);
            for (const VRXWatchFolderEvent &event : m_pending.take(settle, m_now))
                require(reported.insert(event.nativePath()).second, "one event per path and window");
        }
        for (const std::string &path : reported)
            require(m_names.contains(path.substr(std::strlen("/watched/"))), "no event comes from nowhere");
        require(reported.size() <= m_names.size(), "no path is reported twice");
    }

private:
    OpenFile probe()
    {
        constexpr OpenFile kAnswers[] = {OpenFile::Empty, OpenFile::Unknown, OpenFile::Written,
                                         OpenFile::Complete};
        return kAnswers[m_probes++ % std::size(kAnswers)];
    }

    std::size_t m_probes = 0;
    PendingEvents::Clock::time_point m_now;
    PendingEvents m_pending{[this](const std::string &) { return probe(); }};
    WatchedDirectories<std::string, std::hash<std::string>> m_directories;
    std::set<std::string> m_names;
};

void runInotify(std::string_view bytes, Follower &follower)
{
    std::size_t size = 0;
    const bool isWhole = forEachInotifyRecord(bytes, [&](const InotifyRecord &record) {
        require(isWithin(record.name, bytes), "a name lies within the bytes");
        size += sizeof(inotify_event) + record.name.size();
        follower.note(std::to_string(record.watch), record.name, record.mask, false);
    });
    require(size <= bytes.size(), "records do not overlap");
    require(isWhole || !bytes.empty(), "nothing is whole");
}

void runFanotify(std::string_view bytes, Follower &follower)
{
    std::size_t size = 0;
    const bool isWhole = forEachFanotifyRecord(bytes, [&](const FanotifyRecord &record) {
        require(isWithin(record.directory, bytes) && isWithin(record.name, bytes),
                "handle and name lie within the bytes");
        size += sizeof(fanotify_event_metadata) + record.directory.size() + record.name.size();
        follower.note(record.directory, record.name, record.mask, record.process == kOwnProcess);
    });
    require(size <= bytes.size(), "records do not overlap");
    require(isWhole || !bytes.empty(), "nothing is whole");
}

void run(std::string_view input)
{
    if (input.empty())
        return;
    // A block of exactly this size, so that a read behind it is seen.
    const std::size_t size = input.size() - 1;
    const std::unique_ptr<char[]> block(new char[size]);
    std::memcpy(block.get(), input.data() + 1, size);
    Follower follower;
    (input.front() == 'i' ? runInotify : runFanotify)({block.get(), size}, follower);
    follower.finish();
}

} // namespace
} // namespace vantle::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    vantle::fuzz::run({reinterpret_cast<const char *>(data), size});
    return 0;
}
