// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/FileTime.h"

#include <cstdint>
#include <optional>
#include <system_error>

namespace vantle {

/// What one statx says about a path. A link is described itself unless it is followed.
struct FileState
{
    FileTime modified;
    /// When content or anything that is said here changed last; nobody can set it.
    FileTime changed;
    std::uint64_t inode = 0;
    std::uint64_t size = 0;
    /// As the kernel numbers devices: twelve bits of major number, twenty of minor. Kept small, since an
    /// inventory holds a state per file.
    std::uint32_t device = 0;
    bool isDirectory = false;
    bool isRegular = false;
    bool hasOtherLinks = false;
};

/// Whether two states are of the same content of the same file.
inline bool isSameContent(const FileState &a, const FileState &b)
{
    return a.modified == b.modified && a.changed == b.changed && a.inode == b.inode && a.device == b.device &&
           a.size == b.size && a.isDirectory == b.isDirectory;
}

enum class Follow { No, Links };
/// A client of a server may answer from what it has heard a while ago, unless it has to ask.
enum class Freshness { AsCached, FromServer };

/// None with the error set when the state can't be read.
[[nodiscard]] std::optional<FileState> readFileState(int directory, const char *name, Follow follow,
                                                     std::error_code &error,
                                                     Freshness freshness = Freshness::AsCached);
[[nodiscard]] std::optional<FileState> readFileState(const char *path, std::error_code &error);
/// Of an open file.
[[nodiscard]] std::optional<FileState> readFileState(int descriptor, std::error_code &error);

/// True when the error says that nothing is at the path (any other leaves that open).
[[nodiscard]] bool saysMissing(const std::error_code &error);

} // namespace vantle
