// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QString>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include <ctime>

#include <sys/types.h>

namespace vantle {

struct FileAccess;

/// The largest preset file that is read, in bytes.
inline constexpr qint64 kMaximumFileSize = qint64{16} << 20;

/// What can be wrong with a file beyond what the operating system reports.
enum class FileFault {
    notRegular = 1, ///< a folder, FIFO, socket or device
    tooLarge,       ///< more than kMaximumFileSize
    badName,        ///< an empty name, or one that would leave its folder ("/", NUL, ".", "..")
    noTemporary,    ///< all names that were tried for a temporary file are taken
};
[[nodiscard]] std::error_code make_error_code(FileFault fault);

/// The path in the file system's bytes. Names are UTF-8 in every locale.
[[nodiscard]] std::filesystem::path fileSystemPath(const QString &path);

/// Which file a content was read from or written to: another file at the path, or another content of the
/// same one, has another stamp, whatever dates it was given. The change time also moves when the file's mode,
/// owner, links or name change, which says nothing of its content.
struct FileStamp
{
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    timespec modified = {};
    timespec changed = {}; ///< kept by the system alone

    friend bool operator==(const FileStamp &a, const FileStamp &b)
    {
        const auto same = [](const timespec &one, const timespec &other) {
            return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
        };
        return a.device == b.device && a.inode == b.inode && a.size == b.size &&
               same(a.modified, b.modified) && same(a.changed, b.changed);
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
/// mode and access list, and its owner and group as far as the process may set them; permissions for a group
/// or of a list that could not be kept are dropped. A link as target is replaced, never followed; the file
/// gets mode, list and group of the one that it led to. A new file gets those of the file that it is like, if
/// one is named and there, and obeys the umask otherwise. With ownerOnly the file, new or not, is the
/// writer's and nobody else's.
///
/// Throws std::system_error as readFile() does. An object may move between threads but is used by one.
class StagedFile
{
public:
    enum class Access { asBefore, ownerOnly };

    StagedFile(const std::filesystem::path &target, QByteArrayView content, Access access = Access::asBefore,
               const std::filesystem::path &like = {});
    ~StagedFile();
    StagedFile(const StagedFile &) = delete;
    StagedFile &operator=(const StagedFile &) = delete;

    enum class Target { replace, mustBeNew };

    /// With mustBeNew the error is EEXIST when anything stands at the path.
    void commit(Target target = Target::replace);
    /// Of the new file. Renaming changes it: the one that counts is that after commit().
    [[nodiscard]] FileStamp stamp() const;
    /// Of the new file; open as long as this object lives.
    [[nodiscard]] int descriptor() const { return m_file; }
    void syncFolder();

private:
    void createTemporary(const std::filesystem::path &target, Access access,
                         const std::filesystem::path &like);
    [[nodiscard]] bool lockTemporary() const;
    void adopt(const FileAccess &access);
    void discard() noexcept;

    std::string m_targetName;
    std::string m_temporaryName;
    int m_folder = -1;
    int m_file = -1;
};

/// The advisory lock of a folder, for as long as the object lives: whoever looks at a file and then replaces,
/// renames or removes it takes turns with the other processes that ask for it. Where the folder can't be
/// opened, or its file system knows no such lock, there is none, and nothing is waited for.
class FolderTurn
{
public:
    /// Waits for others for so long at most.
    FolderTurn(const std::filesystem::path &folder, std::chrono::milliseconds patience);
    ~FolderTurn();
    FolderTurn(const FolderTurn &) = delete;
    FolderTurn &operator=(const FolderTurn &) = delete;

    /// Whether somebody else did not let go in time.
    [[nodiscard]] bool isRefused() const { return m_isRefused; }

private:
    int m_folder;
    bool m_isRefused = false;
};

/// Whether two names in a folder are one entry, which folds case: the same file, with one name.
[[nodiscard]] bool isOneEntry(const std::filesystem::path &a, const std::filesystem::path &b);

/// Renames as renameToFreeName() does, also to another spelling of a name in a folder that folds case, and
/// makes the renaming last. Returns the moved item's descriptor, of which only the state can be read; the
/// caller closes it. Throws std::system_error.
[[nodiscard]] int moveToFreeName(const std::filesystem::path &from, const std::filesystem::path &to);

/// Removes the temporary files of StagedFile that killed processes left in a folder: those that nobody
/// has locked; of those that other users closed to this one, where that can't be seen, the ones that are an
/// hour old. Silent about what can't be removed.
void removeLeftoverFiles(const std::filesystem::path &folder) noexcept;

} // namespace vantle

template <>
struct std::is_error_code_enum<vantle::FileFault> : std::true_type
{
};
