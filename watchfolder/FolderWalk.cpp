// SPDX-License-Identifier: MIT
#include "watchfolder/FolderWalk.h"

#include "watchfolder/NativePath.h"

#include <dirent.h>
#include <fcntl.h>

#include <cerrno>
#include <cstring>
#include <memory>
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
        while (true) {
            errno = 0;
            const dirent *entry = readdir(stream);
            if (entry == nullptr)
                break;
            if (entry->d_name[0] == '.')
                continue; // hidden, or the directory and its parent
            if (++m_entries % 1024 == 0 && m_visitor.cancelled())
                return false;
            if (!readEntry(stream, directory, entry->d_name))
                return false;
        }
        const std::error_code error(errno, std::system_category());
        return !error || saysMissing(error) || m_visitor.shouldContinue(error, path);
    }

    bool readEntry(DIR *stream, const std::string &directory, const char *name)
    {
        std::error_code error;
        const auto state = readFileState(dirfd(stream), name, Follow::No, error);
        if (!state && saysMissing(error))
            return true;
        m_visitor.found(directory, {name, std::strlen(name)}, state);
        if (!state)
            return m_visitor.shouldContinue(error, m_folder + '/' + joinPath(directory, name));
        if (state->isDirectory && (m_options & SkipSubdirectoryDescendants) == 0)
            m_toRead.push_back(joinPath(directory, name));
        return true;
    }

    const std::string &m_folder;
    const unsigned m_options;
    FolderWalkVisitor &m_visitor;
    std::vector<std::string> m_toRead;
    unsigned long m_entries = 0;
};

} // namespace

WalkResult walkFolder(const std::string &folder, const std::string &directory, unsigned options,
                      FolderWalkVisitor &visitor)
{
    return Walk(folder, options, visitor).run(directory);
}

} // namespace vantle
