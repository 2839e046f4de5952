// SPDX-License-Identifier: MIT
#include "watchfolder/FolderWalk.h"

#include "base/NativePath.h"

#include <dirent.h>
#include <fcntl.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

namespace vantle {

namespace {

struct CloseDirectory
{
    void operator()(DIR *stream) const { closedir(stream); }
};
using DirectoryStream = std::unique_ptr<DIR, CloseDirectory>;

DirectoryStream openDirectory(const std::string &path, bool isFolderItself, std::error_code &error)
{
    // The folder may be reached through a link, a directory in it may not.
    const int descriptor =
        open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | (isFolderItself ? 0 : O_NOFOLLOW));
    DirectoryStream stream(descriptor < 0 ? nullptr : fdopendir(descriptor));
    if (!stream)
        error.assign(errno, std::system_category());
    return stream;
}

bool saysShortage(const std::error_code &error)
{
    return error.value() == EMFILE || error.value() == ENFILE || error.value() == ENOMEM;
}

struct Entry
{
    std::string name;
    std::optional<FileState> state;
    std::error_code error; ///< why there is no state
};

constexpr std::size_t kEntriesAtOnce = 4096;
constexpr std::size_t kEntriesForTwoThreads = 512; ///< fewer cost less than a thread

/// Appends names of the directory, hidden ones left out; false at its end.
bool readNames(DIR *stream, std::vector<Entry> &entries, std::error_code &error)
{
    while (entries.size() < kEntriesAtOnce) {
        errno = 0;
        const dirent *entry = readdir(stream);
        if (entry == nullptr) {
            error.assign(errno, std::system_category());
            return false;
        }
        if (entry->d_name[0] != '.') // nor the directory and its parent
            entries.push_back({entry->d_name, std::nullopt, {}});
    }
    return true;
}

/// Reads the states of a directory's entries while the caller does something else. Of many entries a second
/// thread reads them, which makes a first inventory a third shorter; finish() lets the caller help.
class StatesReading
{
public:
    StatesReading(int directory, Freshness freshness, std::vector<Entry> &entries)
        : m_directory(directory), m_freshness(freshness), m_entries(entries)
    {
        if (entries.size() < kEntriesForTwoThreads || std::thread::hardware_concurrency() < 2)
            return;
        try {
            m_helper = std::jthread([this] { readSome(); });
        } catch (const std::system_error &) {
            // No thread to be had: the caller reads all.
        }
    }
    ~StatesReading() { m_next = m_entries.size(); }
    StatesReading(const StatesReading &) = delete;
    StatesReading &operator=(const StatesReading &) = delete;

    void finish()
    {
        readSome();
        if (m_helper.joinable())
            m_helper.join();
    }

private:
    void readSome()
    {
        constexpr std::size_t kChunk = 64;
        for (std::size_t begin; (begin = m_next.fetch_add(kChunk)) < m_entries.size();) {
            for (std::size_t i = begin; i < std::min(begin + kChunk, m_entries.size()); ++i) {
                Entry &entry = m_entries[i];
                entry.state =
                    readFileState(m_directory, entry.name.c_str(), Follow::No, entry.error, m_freshness);
            }
        }
    }

    const int m_directory;
    const Freshness m_freshness;
    std::vector<Entry> &m_entries;
    std::atomic<std::size_t> m_next = 0;
    std::jthread m_helper; // last: it ends before what it uses
};

class Walk
{
public:
    Walk(const std::string &folder, unsigned options, FolderWalkVisitor &visitor)
        : m_folder(folder), m_options(options), m_visitor(visitor)
    {
    }

    WalkResult run(const std::string &start)
    {
        m_toRead.push_back(start);
        while (!m_toRead.empty()) {
            const std::string directory = std::move(m_toRead.back());
            m_toRead.pop_back();
            if (m_visitor.cancelled() || !readDirectory(directory))
                return WalkResult::Stopped;
            if (m_starved)
                return WalkResult::Starved;
        }
        return WalkResult::Complete;
    }

private:
    bool readDirectory(const std::string &directory)
    {
        const std::string path = m_folder + '/' + directory;
        std::error_code error;
        const DirectoryStream stream = openDirectory(path, directory.empty(), error);
        if (!stream) {
            if (saysMissing(error))
                return true; // gone since it was found
            m_starved = saysShortage(error);
            return m_visitor.shouldContinue(error, path);
        }
        if (const std::error_code unwatched = m_visitor.willReadDirectory(directory, dirfd(stream.get()));
            unwatched && !saysMissing(unwatched) && !m_visitor.shouldContinue(unwatched, path))
            return false;
        return readEntries(stream.get(), directory, path);
    }

    bool readEntries(DIR *stream, const std::string &directory, const std::string &path)
    {
        // While the states of one batch are read, the one before is visited and the names of the next are
        // read.
        const auto freshness = m_options & AskServer ? Freshness::FromServer : Freshness::AsCached;
        std::vector<Entry> before;
        std::vector<Entry> entries;
        std::vector<Entry> next;
        std::error_code error;
        bool isMore = readNames(stream, entries, error);
        while (!entries.empty()) {
            if (m_visitor.cancelled())
                return false;
            StatesReading states(dirfd(stream), freshness, entries);
            if (!visitAll(directory, before))
                return false;
            next.clear();
            isMore = isMore && readNames(stream, next, error);
            states.finish();
            before.swap(entries);
            entries.swap(next);
        }
        if (!visitAll(directory, before))
            return false;
        m_starved = saysShortage(error);
        return !error || saysMissing(error) || m_visitor.shouldContinue(error, path);
    }

    bool visitAll(const std::string &directory, const std::vector<Entry> &entries)
    {
        return std::all_of(entries.begin(), entries.end(),
                           [&](const Entry &entry) { return visit(directory, entry); });
    }

    bool visit(const std::string &directory, const Entry &entry)
    {
        if (!entry.state && saysMissing(entry.error))
            return true;
        m_visitor.found(directory, entry.name, entry.state);
        if (!entry.state)
            return m_visitor.shouldContinue(entry.error, m_folder + '/' + joinPath(directory, entry.name));
        if (entry.state->isDirectory && (m_options & SkipSubdirectoryDescendants) == 0)
            m_toRead.push_back(joinPath(directory, entry.name));
        return true;
    }

    const std::string &m_folder;
    const unsigned m_options;
    FolderWalkVisitor &m_visitor;
    std::vector<std::string> m_toRead;
    bool m_starved = false;
};

} // namespace

WalkResult walkFolder(const std::string &folder, const std::string &directory, unsigned options,
                      FolderWalkVisitor &visitor)
{
    return Walk(folder, options, visitor).run(directory);
}

} // namespace vantle
