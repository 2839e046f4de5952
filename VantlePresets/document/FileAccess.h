// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"

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
    noTemporary,    ///< all names that were tried for a temporary file are taken
};
[[nodiscard]] VANTLE_PRESETS_EXPORT std::error_code make_error_code(FileFault fault);

/// The path in the file system's bytes. Names are UTF-8 in every locale.
[[nodiscard]] VANTLE_PRESETS_EXPORT std::filesystem::path fileSystemPath(const QString &path);

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

    /// Whether nobody has written to the file, as far as its dates tell; the change time is left out.
    [[nodiscard]] bool isSameContent(const FileStamp &other) const
    {
        return device == other.device && inode == other.inode && size == other.size &&
               isSame(modified, other.modified);
    }
    friend bool operator==(const FileStamp &a, const FileStamp &b)
    {
        return a.isSameContent(b) && isSame(a.changed, b.changed);
    }

private:
    static bool isSame(const timespec &a, const timespec &b)
    {
        return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
    }
};

/// Of what stands at the path, through links; nothing when that can't be told.
[[nodiscard]] std::optional<FileStamp> stampOf(const std::filesystem::path &path);
/// Of an open file.
[[nodiscard]] std::optional<FileStamp> stampOf(int descriptor);

/// Reads a whole regular file, through links. Never blocks on a FIFO or device. Throws std::system_error
/// whose what() is the bare reason ("Permission denied"), with a FileFault or the system's code.
/// Callable from any thread.
/// The stamp, when wanted, is taken before the content.
[[nodiscard]] VANTLE_PRESETS_EXPORT QByteArray readFile(const std::filesystem::path &path,
                                                        FileStamp *stamp = nullptr);

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
[[nodiscard]] VANTLE_PRESETS_EXPORT QByteArray readFully(int descriptor);

/// Writes all of it to an open descriptor; a full pipe is waited for, also where the descriptor does not
/// block. Throws std::system_error. Callable from any thread.
VANTLE_PRESETS_EXPORT void writeFully(int descriptor, QByteArrayView content);

/// Writes the file where it stands: readers may see half of it, and a failure leaves what was written so
/// far. For callers whose contract says so; everything else uses StagedFile. Throws std::system_error.
void writeFileInPlace(const std::filesystem::path &path, QByteArrayView content);

} // namespace vantle

template <>
struct std::is_error_code_enum<vantle::FileFault> : std::true_type
{
};
