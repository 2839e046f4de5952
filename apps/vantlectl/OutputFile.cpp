// SPDX-License-Identifier: MIT
#include "apps/vantlectl/OutputFile.h"

#include "apps/vantlectl/InputFile.h"
#include "apps/vantlectl/PresetText.h"

#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/document/StagedFile.h"

#include <QtCore/QScopeGuard>

#include <algorithm>
#include <cerrno>
#include <optional>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

[[noreturn]] void fail(int error)
{
    throw std::system_error(error, std::generic_category());
}

fs::path folderOf(const fs::path &path)
{
    std::error_code error;
    fs::path folder = fs::canonical(path.has_parent_path() ? path.parent_path() : ".", error);
    if (error)
        throw std::system_error(error);
    return folder;
}

bool isOfProcesses(const fs::path &folder)
{
    struct statfs found = {};
    return ::statfs(folder.c_str(), &found) == 0 && found.f_type == PROC_SUPER_MAGIC;
}

/// The number of a descriptor of this process, when the folder is one of its own below /proc.
std::optional<int> ownDescriptor(const fs::path &folder, const std::string &name)
{
    const bool isOwn =
        folder.filename() == "fd" && folder.native().starts_with("/proc/" + std::to_string(::getpid()) + '/');
    const bool isNumber = !name.empty() && name.size() < 7 && // of which a process has a million at most
                          std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
    return isOwn && isNumber ? std::optional(std::stoi(name)) : std::nullopt;
}

bool isPresetsFolder(const fs::path &folder)
{
    return folder.filename() == "Streaming Presets" && folder.parent_path().filename() == "Orvalle";
}

/// Who may do what with a file.
struct Rights
{
    /// Of the source of a copy: "-" or a path.
    static Rights ofSource(const fs::path &source)
    {
        Rights rights;
        const bool isFound = source == kStandardStream ? ::fstat(STDIN_FILENO, &rights.status) == 0
                                                       : ::stat(source.c_str(), &rights.status) == 0;
        rights.isFile = isFound && S_ISREG(rights.status.st_mode);
        rights.hasList = source == kStandardStream ? ::fgetxattr(STDIN_FILENO, kAccessList, nullptr, 0) > 0
                                                   : ::getxattr(source.c_str(), kAccessList, nullptr, 0) > 0;
        return rights;
    }
    /// Of what stands at the path itself.
    static Rights ofTarget(const fs::path &path)
    {
        Rights rights;
        rights.isFile = ::lstat(path.c_str(), &rights.status) == 0 && S_ISREG(rights.status.st_mode);
        rights.hasList = ::lgetxattr(path.c_str(), kAccessList, nullptr, 0) > 0;
        return rights;
    }
    [[nodiscard]] mode_t others() const { return status.st_mode & S_IRWXO; }
    [[nodiscard]] mode_t group() const { return status.st_mode >> 3 & S_IRWXO; }
    [[nodiscard]] mode_t owner() const { return status.st_mode >> 6 & S_IRWXO; }

    static constexpr const char *kAccessList = "system.posix_acl_access";

    bool isFile = false;
    bool hasList = false; ///< an access list: the mode's group bits are its mask
    struct stat status = {};
};

/// Whether somebody but the process's user may do more with the one file than with the other. Of a group or
/// an owner that the source does not have, nothing is known but that they are among the others there.
bool isMoreOpen(const Rights &copy, const Rights &source)
{
    const auto exceeds = [](mode_t some, mode_t others) { return (some & ~others) != 0; };
    const bool isSameGroup = copy.status.st_gid == source.status.st_gid && !copy.hasList && !source.hasList;
    const bool isSameOwner = copy.status.st_uid == source.status.st_uid || copy.status.st_uid == ::geteuid();
    return exceeds(copy.others(), source.others()) ||
           exceeds(copy.group(), isSameGroup ? source.group() : source.others()) ||
           (!isSameOwner && exceeds(copy.owner(), source.others()));
}

void replaceFile(const fs::path &path, QByteArrayView document, StagedFile::Access access,
                 const fs::path &like = {})
{
    StagedFile file(path, document, access, like);
    file.commit();
    file.syncFolder();
}

} // namespace

OutputFile::OutputFile(const fs::path &named) : m_name(shown(named)), m_path(named)
{
    constexpr int kLinks = 40; // as the system
    if (named == kStandardStream) {
        m_name = u"standard output"_s;
        m_kind = Kind::descriptor;
        m_descriptor = STDOUT_FILENO;
        return;
    }
    if (named.native().find('\0') != std::string::npos)
        throw std::system_error(make_error_code(FileFault::badName));
    // The system itself has the first say: it follows no link that another user has put into /tmp.
    struct stat status = {};
    if (::stat(named.c_str(), &status) != 0 && errno != ENOENT)
        fail(errno);
    for (int links = 0;; ++links) {
        if (::lstat(m_path.c_str(), &status) != 0) {
            if (errno != ENOENT)
                fail(errno);
            return; // to be made
        }
        if (!S_ISLNK(status.st_mode))
            break;
        const fs::path folder = folderOf(m_path);
        if (const auto descriptor = ownDescriptor(folder, m_path.filename())) {
            m_kind = Kind::descriptor;
            m_descriptor = *descriptor;
            return;
        }
        if (isPresetsFolder(folder))
            return;
        if (links == kLinks)
            fail(ELOOP);
        if (isOfProcesses(folder)) // another process's descriptor, or what it runs
            throw std::system_error(make_error_code(FileFault::notRegular));
        m_path = folder / fs::read_symlink(m_path);
    }
    if (S_ISDIR(status.st_mode))
        fail(EISDIR);
    if (S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode))
        m_kind = Kind::device;
    else if (!S_ISREG(status.st_mode))
        throw std::system_error(make_error_code(FileFault::notRegular));
}

void OutputFile::write(QByteArrayView document, Content content, Output &out) const
{
    using Access = StagedFile::Access;
    if (isReplaced())
        replaceFile(m_path, document, content == Content::secret ? Access::ownerOnly : Access::asBefore);
    else
        writeThrough(document, content, out);
}

void OutputFile::writeCopy(QByteArrayView document, const fs::path &source, Output &out) const
{
    const Rights from = Rights::ofSource(source);
    if (!from.isFile || !isReplaced())
        return write(document, !from.isFile || from.others() & S_IROTH ? Content::open : Content::secret,
                     out);
    using Access = StagedFile::Access;
    const Rights before = Rights::ofTarget(m_path);
    const bool staysAsItIs = before.isFile && !isMoreOpen(before, from);
    replaceFile(m_path, document, staysAsItIs ? Access::asBefore : Access::asLike,
                source == kStandardStream ? "/proc/self/fd/0" : source);
}

/// To a descriptor or device, with a line break behind the document as texts end.
void OutputFile::writeThrough(QByteArrayView document, Content content, Output &out) const
{
    int descriptor = m_descriptor;
    if (m_kind == Kind::device) // a FIFO that nobody reads is waited for, as every program does
        descriptor = ::open(m_path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0)
        fail(errno);
    const auto close = qScopeGuard([&] {
        if (m_kind == Kind::device)
            ::close(descriptor);
    });
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0)
        fail(errno);
    if (m_kind == Kind::device && !S_ISFIFO(status.st_mode) && !S_ISCHR(status.st_mode)) // exchanged just now
        throw std::system_error(make_error_code(FileFault::notRegular));
    const bool isStored = S_ISREG(status.st_mode) || S_ISFIFO(status.st_mode);
    if (content == Content::secret && isStored && (status.st_mode & (S_IRGRP | S_IROTH)) != 0)
        remark("note: others can read %1, and the secrets in it (mode %2)"_L1.arg(
            m_name, QString::number(status.st_mode & 0777, 8)));
    if (descriptor == STDOUT_FILENO) {
        out.bytes(document);
        out.line();
        out.flush();
        return;
    }
    writeFully(descriptor, document);
    writeFully(descriptor, "\n");
}

} // namespace vantle::ctl
