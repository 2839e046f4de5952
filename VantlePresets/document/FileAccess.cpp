// SPDX-License-Identifier: MIT
#include "VantlePresets/document/FileAccess.h"

#include <QtCore/QByteArrayView>

#include <array>
#include <cerrno>
#include <random>
#include <string_view>
#include <utility>

#include <cstdio>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

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
        }
        return "Unknown file fault";
    }
};

[[noreturn]] void throwLastError()
{
    throw std::system_error(errno, std::generic_category());
}

/// Repeats a system call that a signal interrupted; throws when it fails for another reason.
template <class Call>
auto checked(Call call)
{
    for (;;) {
        const auto result = call();
        if (result >= 0)
            return result;
        if (errno != EINTR)
            throwLastError();
    }
}

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

class Descriptor
{
public:
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    ~Descriptor()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    /// Some file systems tell only now that there is no space (NFS, quotas).
    void close()
    {
        if (::close(std::exchange(m_descriptor, -1)) != 0 && errno != EINTR)
            throwLastError();
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

constexpr std::string_view kTemporaryPrefix = ".vantle-";
constexpr std::size_t kTemporaryLetters = 8;
constexpr int kMaximumAttempts = 100;
constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789";

std::string temporaryName()
{
    static thread_local std::mt19937 random{std::random_device{}()};
    std::uniform_int_distribution<std::size_t> pick(0, kLetters.size() - 1);
    std::string name(kTemporaryPrefix);
    for (std::size_t i = 0; i < kTemporaryLetters; ++i)
        name += kLetters[pick(random)];
    return name;
}

bool isTemporaryName(std::string_view name)
{
    return name.starts_with(kTemporaryPrefix) && name.size() == kTemporaryPrefix.size() + kTemporaryLetters &&
           name.find_first_not_of(kLetters, kTemporaryPrefix.size()) == std::string_view::npos;
}

/// The system would take the path to end there.
void requireNoNul(const std::filesystem::path &path)
{
    if (path.native().find('\0') != std::string::npos)
        throw std::system_error(make_error_code(FileFault::badName));
}

FileStamp stampFrom(const struct stat &status)
{
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim};
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
    file.close();
}

StagedFile::StagedFile(const std::filesystem::path &target, QByteArrayView content, Access access)
    : m_targetName(target.filename().string())
{
    requireNoNul(target);
    if (m_targetName.empty() || m_targetName == "." || m_targetName == "..")
        throw std::system_error(make_error_code(FileFault::badName));
    const std::string folder = target.has_parent_path() ? target.parent_path().string() : std::string(".");
    try {
        m_folder = checked([&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
        createTemporary(access);
        writeFully(m_file, content);
        checked([&] { return ::fsync(m_file); });
    } catch (...) {
        discard();
        throw;
    }
}

StagedFile::~StagedFile()
{
    discard();
}

void StagedFile::createTemporary(Access access)
{
    struct stat old = {};
    const bool replaces =
        ::fstatat(m_folder, m_targetName.c_str(), &old, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(old.st_mode);
    // A replaced file's permissions are set once owner and group stand, never wider in between.
    const mode_t mode = replaces || access == Access::ownerOnly ? 0600 : 0666;
    constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    for (int attempt = 0; attempt < kMaximumAttempts; ++attempt) {
        m_temporaryName = temporaryName();
        m_file = ::openat(m_folder, m_temporaryName.c_str(), kFlags, mode);
        if (m_file >= 0 && lockTemporary())
            break;
        if (m_file < 0 && errno != EEXIST && errno != EINTR) {
            m_temporaryName.clear();
            throwLastError();
        }
        if (m_file >= 0)
            ::close(std::exchange(m_file, -1));
        m_temporaryName.clear(); // somebody else's
    }
    if (m_file < 0)
        throw std::system_error(std::make_error_code(std::errc::file_exists));
    if (replaces && access == Access::asBefore)
        adoptIdentity(old.st_mode & 0777, old.st_uid, old.st_gid); // no set-id bits: the owner may be another
}

/// False when another process that cleans up took the new file for a leftover, before it was locked.
bool StagedFile::lockTemporary() const
{
    while (::flock(m_file, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK)
            return false;
        if (errno != EINTR)
            break; // a file system without locks: nobody there can clean up either
    }
    struct stat byName = {};
    struct stat byFile = {};
    return ::fstat(m_file, &byFile) == 0 &&
           ::fstatat(m_folder, m_temporaryName.c_str(), &byName, AT_SYMLINK_NOFOLLOW) == 0 &&
           byName.st_ino == byFile.st_ino && byName.st_dev == byFile.st_dev;
}

void StagedFile::adoptIdentity(mode_t mode, uid_t owner, gid_t group)
{
    struct stat fresh = {};
    checked([&] { return ::fstat(m_file, &fresh); });
    if (fresh.st_gid != group && ::fchown(m_file, static_cast<uid_t>(-1), group) != 0)
        mode &= ~static_cast<mode_t>(S_IRWXG);
    // Only a privileged process may give a file away; for others the writer becomes the owner.
    if (fresh.st_uid != owner && ::fchown(m_file, owner, static_cast<gid_t>(-1)) != 0 && errno != EPERM)
        throwLastError();
    checked([&] { return ::fchmod(m_file, mode); });
}

void StagedFile::commit(Target target)
{
    const char *const from = m_temporaryName.c_str();
    const char *const to = m_targetName.c_str();
    if (target == Target::replace) {
        checked([&] { return ::renameat(m_folder, from, m_folder, to); });
    } else {
        renameToFreeName(m_folder, from, to);
    }
    m_temporaryName.clear();
}

void renameToFreeName(int folder, const char *from, const char *to)
{
    if (::renameat2(folder, from, folder, to, RENAME_NOREPLACE) == 0)
        return;
    if (errno != EINVAL && errno != ENOSYS)
        throwLastError();
    // A file system without that kind of renaming: a second name fails in the same way.
    checked([&] { return ::linkat(folder, from, folder, to, 0); });
    ::unlinkat(folder, from, 0);
}

FileStamp StagedFile::stamp() const
{
    struct stat status = {};
    checked([&] { return ::fstat(m_file, &status); });
    return stampFrom(status);
}

void StagedFile::syncFolder()
{
    // A file system that can't sync a folder says EINVAL; the rename itself is done.
    if (::fsync(m_folder) != 0 && errno != EINVAL)
        throwLastError();
}

void StagedFile::discard() noexcept
{
    if (!m_temporaryName.empty())
        ::unlinkat(m_folder, m_temporaryName.c_str(), 0);
    m_temporaryName.clear();
    for (int *descriptor : {&m_file, &m_folder}) {
        if (*descriptor >= 0)
            ::close(*descriptor);
        *descriptor = -1;
    }
}

void removeLeftoverFiles(const std::filesystem::path &folder) noexcept
{
    try {
        for (const auto &entry : std::filesystem::directory_iterator(folder)) {
            if (!isTemporaryName(entry.path().filename().string()))
                continue;
            const int file =
                ::open(entry.path().c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
            if (file < 0)
                continue;
            const Descriptor closer(file);
            if (::flock(file, LOCK_EX | LOCK_NB) == 0)
                ::unlink(entry.path().c_str());
        }
    } catch (const std::exception &) {
        // The folder can't be listed: whoever uses it will say so.
    }
}

} // namespace vantle
