// SPDX-License-Identifier: MIT
#include "VantlePresets/document/FileAccess.h"

#include "VantlePresets/document/FileCalls.h"

#include <QtCore/QByteArrayView>

#include <fcntl.h>
#include <poll.h>

namespace vantle {
namespace {

class FileFaultCategory final : public std::error_category
{
public:
    const char *name() const noexcept override { return "vantle.file"; }

    std::string message(int fault) const override
    {
        switch (static_cast<FileFault>(fault)) {
        case FileFault::notRegular:
            return "Not a regular file";
        case FileFault::tooLarge:
            return "File is larger than 16 MiB";
        case FileFault::badName:
            return "Not a valid file name";
        case FileFault::noTemporary:
            return "No name is left for a temporary file";
        }
        return "Unknown file fault";
    }
};

/// After a read or write that failed: throws, unless it would merely have blocked or was interrupted.
void awaitReadiness(int descriptor, short events)
{
    if (errno == EINTR)
        return;
    if (errno != EAGAIN)
        throwLastError();
    pollfd wanted = {descriptor, events, 0};
    checked([&] { return ::poll(&wanted, 1, -1); });
}

void requireRegular(const struct stat &status)
{
    if (!S_ISREG(status.st_mode))
        throw std::system_error(S_ISDIR(status.st_mode) ? make_error_code(std::errc::is_a_directory)
                                                        : make_error_code(FileFault::notRegular));
}

/// Opens a file for reading; a socket, and any device that a link leads to, is refused without opening it,
/// which can have effects of its own.
int openRegular(int folder, const char *path)
{
    constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    const int direct = ::openat(folder, path, kFlags | O_NOFOLLOW);
    if (direct >= 0)
        return direct;
    struct stat status = {};
    checked([&] { return ::fstatat(folder, path, &status, 0); });
    requireRegular(status);
    return checked([&] { return ::openat(folder, path, kFlags); });
}

/// Reads to the end, or as many bytes as a file has. Its size is a hint: it may grow, and files of /proc have
/// none.
void readInto(QByteArray &content, int file, std::optional<off_t> size)
{
    constexpr qint64 kFirstPiece = 1 << 16;
    qsizetype length = 0;
    content.resize(std::min<qint64>(size.value_or(kFirstPiece), kMaximumFileSize) + 1);
    for (;;) {
        const ssize_t got =
            ::read(file, content.data() + length, static_cast<std::size_t>(content.size() - length));
        if (got == 0)
            break;
        if (got < 0) {
            awaitReadiness(file, POLLIN);
            continue;
        }
        length += got;
        if (length > kMaximumFileSize)
            throw std::system_error(make_error_code(FileFault::tooLarge));
        if (length == size)
            break; // what is appended from now on is another change
        if (length == content.size())
            content.resize(std::min<qsizetype>(2 * length, kMaximumFileSize + 1));
    }
    content.truncate(length);
}

void readRegular(int folder, const char *path, QByteArray &content, FileStamp *stamp)
{
    struct stat status = {};
    const Descriptor file(openRegular(folder, path));
    checked([&] { return ::fstat(file.get(), &status); });
    requireRegular(status);
    if (stamp)
        *stamp = stampFrom(status);
    readInto(content, file.get(), status.st_size);
}

} // namespace

std::error_code make_error_code(FileFault fault)
{
    static const FileFaultCategory category;
    return {static_cast<int>(fault), category};
}

std::filesystem::path fileSystemPath(const QString &path)
{
    return path.toStdString();
}

QByteArray readFile(const std::filesystem::path &path, FileStamp *stamp)
{
    requireNoNul(path);
    QByteArray content;
    readRegular(AT_FDCWD, path.c_str(), content, stamp);
    return content;
}

QByteArray readFully(int descriptor)
{
    QByteArray content;
    readInto(content, descriptor, std::nullopt);
    return content;
}

FolderReader::FolderReader(const std::filesystem::path &folder)
    : m_prefix(folder.string() + '/'), m_folder(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC))
{
}

FolderReader::~FolderReader()
{
    if (m_folder >= 0)
        ::close(m_folder);
}

void FolderReader::read(const std::string &path, QByteArray &buffer, FileStamp *stamp) const
{
    requireNoNul(path);
    if (m_folder >= 0 && path.starts_with(m_prefix))
        readRegular(m_folder, path.c_str() + m_prefix.size(), buffer, stamp);
    else
        readRegular(AT_FDCWD, path.c_str(), buffer, stamp);
}

std::optional<FileStamp> stampOf(const std::filesystem::path &path)
{
    struct stat status = {};
    if (path.native().find('\0') != std::string::npos)
        return std::nullopt;
    return ::stat(path.c_str(), &status) == 0 ? std::optional(stampFrom(status)) : std::nullopt;
}

std::optional<FileStamp> stampOf(int descriptor)
{
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0 ? std::optional(stampFrom(status)) : std::nullopt;
}

void writeFully(int descriptor, QByteArrayView content)
{
    while (!content.isEmpty()) {
        const ssize_t written = ::write(descriptor, content.data(), static_cast<std::size_t>(content.size()));
        if (written >= 0)
            content = content.sliced(written);
        else
            awaitReadiness(descriptor, POLLOUT);
    }
}

void writeFileInPlace(const std::filesystem::path &path, QByteArrayView content)
{
    constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    requireNoNul(path);
    Descriptor file(checked([&] { return ::open(path.c_str(), kFlags, 0666); }));
    writeFully(file.get(), content);
    if (!file.close())
        throwLastError();
}

} // namespace vantle
