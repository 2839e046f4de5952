// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/document/FileAccess.h"

#include <chrono>

namespace vantle {

struct FileAccess;

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
class VANTLE_PRESETS_EXPORT StagedFile
{
public:
    enum class Access {
        asBefore, ///< of the target, else of the file that it is like, else of the umask
        asLike,   ///< the same without the target
        ownerOnly,
    };

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

/// Renames as renameToFreeName() does, also to another spelling of a name in a folder that folds case.
/// Returns the moved item's descriptor, of which only the state can be read; the
/// caller closes it. Throws std::system_error.
[[nodiscard]] int moveToFreeName(const std::filesystem::path &from, const std::filesystem::path &to);

/// Makes what was renamed in the folder last, where its file system can. Throws std::system_error.
void syncFolder(const std::filesystem::path &folder);

/// Removes the temporary files of StagedFile that killed processes left in a folder: those that nobody
/// has locked; of those that other users closed to this one, where that can't be seen, the ones that are an
/// hour old. Silent about what can't be removed.
void removeLeftoverFiles(const std::filesystem::path &folder) noexcept;

} // namespace vantle
