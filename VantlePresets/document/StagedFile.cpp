// SPDX-License-Identifier: MIT
#include "VantlePresets/document/StagedFile.h"

#include "VantlePresets/document/FileCalls.h"

#include <array>
#include <random>
#include <string_view>
#include <thread>

#include <cstdio>
#include <ctime>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/xattr.h>

namespace vantle {

/// Who may do what with a file.
struct FileAccess
{
    mode_t mode = 0;
    std::optional<uid_t> owner; ///< none when the new file's is its writer's
    gid_t group = 0;
    QByteArray list; ///< "" for none
};

namespace {

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

constexpr const char *kAccessList = "system.posix_acl_access";

/// Of a regular file; nothing when there is none.
std::optional<FileAccess> accessOf(const std::filesystem::path &path)
{
    struct stat found = {};
    if (::lstat(path.c_str(), &found) != 0)
        return std::nullopt;
    const bool isLink = S_ISLNK(found.st_mode);
    if ((isLink && ::stat(path.c_str(), &found) != 0) || !S_ISREG(found.st_mode))
        return std::nullopt;
    FileAccess access;
    access.mode = found.st_mode & 0777; // no set-id bits: the owner may be another
    access.group = found.st_gid;
    if (!isLink)
        access.owner = found.st_uid;
    const ssize_t size = ::getxattr(path.c_str(), kAccessList, nullptr, 0);
    if (size > 0) {
        access.list.resize(size);
        access.list.resize(std::max<ssize_t>(
            ::getxattr(path.c_str(), kAccessList, access.list.data(), static_cast<std::size_t>(size)), 0));
        if (access.list.isEmpty()) // it changed just now; its mask is not the group's right
            access.mode &= ~static_cast<mode_t>(S_IRWXG);
    }
    return access;
}

} // namespace

StagedFile::StagedFile(const std::filesystem::path &target, QByteArrayView content, Access access,
                       const std::filesystem::path &like)
    : m_targetName(target.filename().string())
{
    requireNoNul(target);
    if (m_targetName.empty() || m_targetName == "." || m_targetName == "..")
        throw std::system_error(make_error_code(FileFault::badName));
    const std::string folder = target.has_parent_path() ? target.parent_path().string() : std::string(".");
    try {
        m_folder = checked([&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
        createTemporary(target, access, like);
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

void StagedFile::createTemporary(const std::filesystem::path &target, Access access,
                                 const std::filesystem::path &like)
{
    std::optional<FileAccess> adopted;
    if (access != Access::ownerOnly) {
        if (access == Access::asBefore)
            adopted = accessOf(target);
        if (!adopted && !like.empty()) {
            adopted = accessOf(like);
            if (adopted)
                adopted->owner.reset();
        }
    }
    // Permissions are set once owner and group stand, never wider in between.
    const mode_t mode = adopted || access == Access::ownerOnly ? 0600 : 0666;
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
        throw std::system_error(make_error_code(FileFault::noTemporary));
    if (adopted)
        adopt(*adopted);
    else if (access == Access::ownerOnly)
        ::fremovexattr(m_file, kAccessList); // the folder's default
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

void StagedFile::adopt(const FileAccess &access)
{
    mode_t mode = access.mode;
    struct stat fresh = {};
    checked([&] { return ::fstat(m_file, &fresh); });
    // Whoever is in another group was one of the others, and may do what they may.
    if (fresh.st_gid != access.group && ::fchown(m_file, static_cast<uid_t>(-1), access.group) != 0)
        mode &= ~static_cast<mode_t>(S_IRWXG) | (mode & S_IRWXO) << 3;
    // Only a privileged process may give a file away; for others the writer becomes the owner.
    if (access.owner && fresh.st_uid != *access.owner &&
        ::fchown(m_file, *access.owner, static_cast<gid_t>(-1)) != 0 && errno != EPERM)
        throwLastError();
    if (access.list.isEmpty())
        ::fremovexattr(m_file, kAccessList); // the folder's default
    else if (::fsetxattr(m_file, kAccessList, access.list.constData(),
                         static_cast<std::size_t>(access.list.size()), 0) != 0)
        mode &=
            ~static_cast<mode_t>(S_IRWXG); // with a list, these bits are its mask and not the group's rights
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

FolderTurn::FolderTurn(const std::filesystem::path &folder, std::chrono::milliseconds patience)
    : m_folder(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    // The system has no lock with a time limit that would not take a signal of the host's.
    constexpr std::chrono::milliseconds kPause{5};
    const auto end = std::chrono::steady_clock::now() + patience;
    while (m_folder >= 0 && ::flock(m_folder, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR)
            continue;
        m_isRefused = errno == EWOULDBLOCK && std::chrono::steady_clock::now() >= end;
        if (errno != EWOULDBLOCK || m_isRefused)
            break;
        std::this_thread::sleep_for(kPause);
    }
}

FolderTurn::~FolderTurn()
{
    if (m_folder >= 0)
        ::close(m_folder);
}

bool isOneEntry(const std::filesystem::path &a, const std::filesystem::path &b)
{
    struct stat first = {};
    struct stat second = {};
    return ::lstat(a.c_str(), &first) == 0 && ::lstat(b.c_str(), &second) == 0 &&
           first.st_ino == second.st_ino && first.st_dev == second.st_dev && first.st_nlink == 1;
}

int moveToFreeName(const std::filesystem::path &from, const std::filesystem::path &to)
{
    const Descriptor folder(
        checked([&] { return ::open(to.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    const std::string oldName = from.filename();
    const std::string newName = to.filename();
    int moved =
        checked([&] { return ::openat(folder.get(), oldName.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC); });
    try {
        if (isOneEntry(from, to)) {
            const std::string between = temporaryName();
            renameToFreeName(folder.get(), oldName.c_str(), between.c_str());
            try {
                renameToFreeName(folder.get(), between.c_str(), newName.c_str());
            } catch (const std::system_error &) {
                ::renameat(folder.get(), between.c_str(), folder.get(), oldName.c_str());
                throw;
            }
        } else {
            renameToFreeName(folder.get(), oldName.c_str(), newName.c_str());
        }
    } catch (...) {
        ::close(moved);
        throw;
    }
    return moved;
}

void syncFolder(const std::filesystem::path &folder)
{
    const Descriptor opened(
        checked([&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    ::fsync(opened.get());
}

void removeLeftoverFiles(const std::filesystem::path &folder) noexcept
{
    constexpr std::time_t kOldEnough = 60 * 60; // seconds; a file is staged for a second or two
    try {
        for (const auto &entry : std::filesystem::directory_iterator(folder)) {
            if (!isTemporaryName(entry.path().filename().string()))
                continue;
            const int file =
                ::open(entry.path().c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
            if (file < 0) {
                struct stat status = {};
                if (errno == EACCES && ::lstat(entry.path().c_str(), &status) == 0 &&
                    S_ISREG(status.st_mode) && std::time(nullptr) - status.st_ctim.tv_sec > kOldEnough)
                    ::unlink(entry.path().c_str());
                continue;
            }
            const Descriptor closer(file);
            if (::flock(file, LOCK_EX | LOCK_NB) == 0)
                ::unlink(entry.path().c_str());
        }
    } catch (const std::exception &) {
        // The folder can't be listed: whoever uses it will say so.
    }
}

} // namespace vantle
