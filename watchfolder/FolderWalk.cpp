// SPDX-License-Identifier: MIT
#include "watchfolder/FolderWalk.h"

#include "watchfolder/NativePath.h"

#include <dirent.h>
#include <fcntl.h>

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

void readStates(int directory, std::vector<Entry> &entries)
{
    const auto readSome = [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i)
            entries[i].state =
                readFileState(directory, entries[i].name.c_str(), Follow::No, entries[i].error);
    };
    std::size_t own = entries.size();
    std::jthread helper;
    if (entries.size() >= kEntriesForTwoThreads && std::thread::hardware_concurrency() > 1) {
        try {
            helper = std::jthread(readSome, entries.size() / 2, entries.size());
            own = entries.size() / 2;
        } catch (const std::system_error &) {
            // No more threads: this one does it all.
        }
    }
    readSome(0, own);
}

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
            return m_visitor.shouldContinue(error, path);
        }
        if (const std::error_code unwatched = m_visitor.willReadDirectory(directory, dirfd(stream.get()));
            unwatched && !saysMissing(unwatched) && !m_visitor.shouldContinue(unwatched, path))
            return false;
        return readEntries(stream.get(), directory, path);
    }

    bool readEntries(DIR *stream, const std::string &directory, const std::string &path)
    {
        std::vector<Entry> entries;
        for (bool isMore = true; isMore;) {
            if (m_visitor.cancelled())
                return false;
            entries.clear();
            std::error_code error;
            isMore = readNames(stream, entries, error);
            readStates(dirfd(stream), entries);
            for (const Entry &entry : entries) {
                if (!visit(directory, entry))
                    return false;
            }
            if (error && !saysMissing(error))
                return m_visitor.shouldContinue(error, path);
        }
        return true;
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
};

} // namespace

WalkResult walkFolder(const std::string &folder, const std::string &directory, unsigned options,
                      FolderWalkVisitor &visitor)
{
    return Walk(folder, options, visitor).run(directory);
}

} // namespace vantle
