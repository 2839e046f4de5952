// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QString>

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include <ctime>

#include <sys/types.h>

namespace vantle {

/// The largest preset file that is read, in bytes.
inline constexpr qint64 kMaximumFileSize = qint64{16} << 20;

/// What can be wrong with a file beyond what the operating system reports.
enum class FileFault {
    notRegular = 1, ///< a folder, FIFO, socket or device
    tooLarge,       ///< more than kMaximumFileSize
    badName,        ///< an empty name, or one that would leave its folder ("/", NUL, ".", "..")
};
[[nodiscard]] std::error_code make_error_code(FileFault fault);

/// The path in the file system's bytes. Names are UTF-8 in every locale.
[[nodiscard]] std::filesystem::path fileSystemPath(const QString &path);

/// Which file a content was read from or written to: another file at the path, or another content of the
/// same one, has another stamp.
struct FileStamp
{
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    timespec modified = {};

    friend bool operator==(const FileStamp &a, const FileStamp &b)
    {
        return a.device == b.device && a.inode == b.inode && a.size == b.size &&
               a.modified.tv_sec == b.modified.tv_sec && a.modified.tv_nsec == b.modified.tv_nsec;
    }
};

/// Of what stands at the path, through links; nothing when that can't be told.
[[nodiscard]] std::optional<FileStamp> stampOf(const std::filesystem::path &path);

/// Reads a whole regular file, through links. Never blocks on a FIFO or device. Throws std::system_error
/// whose what() is the bare reason ("Permission denied"), with a FileFault or the system's code.
/// Callable from any thread.
/// The stamp, when wanted, is taken before the content.
[[nodiscard]] QByteArray readFile(const std::filesystem::path &path, FileStamp *stamp = nullptr);

/// Reads many files of one folder as readFile() does, without looking the folder up each time. Callable from
/// any thread, from several at once.
class FolderReader
{
public:
    /// Never throws: a folder that can't be opened is met again at each file.
    explicit FolderReader(const std::filesystem::path &folder);
    ~FolderReader();
    FolderReader(const FolderReader &) = delete;
    FolderReader &operator=(const FolderReader &) = delete;

    /// Into the buffer, whose memory is used again.
    void read(const std::string &path, QByteArray &buffer, FileStamp *stamp = nullptr) const;

private:
    std::string m_prefix; ///< of the paths below the folder
    int m_folder;
};

/// Reads to the end of an open descriptor. Throws std::system_error, with FileFault::tooLarge for what is
/// larger than a file may be. Callable from any thread.
[[nodiscard]] QByteArray readFully(int descriptor);

/// Writes all of it to an open descriptor; a full pipe is waited for, also where the descriptor does not
/// block. Throws std::system_error. Callable from any thread.
void writeFully(int descriptor, QByteArrayView content);

/// Writes the file where it stands: readers may see half of it, and a failure leaves what was written so
/// far. For callers whose contract says so; everything else uses StagedFile. Throws std::system_error.
void writeFileInPlace(const std::filesystem::path &path, QByteArrayView content);

/// Renames within a folder, an open one or AT_FDCWD, unless something of the new name is there; on a file
/// system that can't do that in one step the file has both names for a moment. Throws std::system_error.
void renameToFreeName(int folder, const char *from, const char *to);

/// A file's new content, complete and on disk, but not yet in its place.
///
/// The constructor writes a hidden temporary file (".vantle-" and eight letters, locked with flock where the
/// file system can, while it is in use) into the target's folder and syncs it; commit() renames it over the
/// target and syncFolder() makes the renaming last, so that readers and power failures find the old content
/// or the new one, whole. Without a commit the temporary file is removed. A target that exists keeps its
/// permissions, and its owner and group as far as the process may set them; permissions for a group that
/// could not be kept are dropped. A new file obeys the umask. With ownerOnly the file, new or not, is the
/// writer's and nobody else's. A link as target is replaced, never followed.
///
/// Throws std::system_error as readFile() does. An object may move between threads but is used by one.
class StagedFile
{
public:
    enum class Access { asBefore, ownerOnly };

    StagedFile(const std::filesystem::path &target, QByteArrayView content, Access access = Access::asBefore);
    ~StagedFile();
    StagedFile(const StagedFile &) = delete;
    StagedFile &operator=(const StagedFile &) = delete;

    enum class Target { replace, mustBeNew };

    /// With mustBeNew the error is EEXIST when anything stands at the path.
    void commit(Target target = Target::replace);
    /// Of the new file.
    [[nodiscard]] FileStamp stamp() const;
    void syncFolder();

private:
    void createTemporary(Access access);
    [[nodiscard]] bool lockTemporary() const;
    void adoptIdentity(mode_t mode, uid_t owner, gid_t group);
    void discard() noexcept;

    std::string m_targetName;
    std::string m_temporaryName;
    int m_folder = -1;
    int m_file = -1;
};

/// Removes the temporary files of StagedFile that killed processes left in a folder: those that nobody
/// has locked. Silent about what can't be removed.
void removeLeftoverFiles(const std::filesystem::path &folder) noexcept;

} // namespace vantle

template <>
struct std::is_error_code_enum<vantle::FileFault> : std::true_type
{
};
