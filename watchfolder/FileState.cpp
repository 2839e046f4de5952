// SPDX-License-Identifier: MIT
#include "watchfolder/FileState.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace vantle {

std::optional<FileState> readFileState(int directory, const char *name, Follow follow, std::error_code &error,
                                       Freshness freshness)
{
    constexpr unsigned wanted = STATX_TYPE | STATX_MTIME | STATX_INO | STATX_SIZE | STATX_NLINK;
    struct statx found = {};
    const int flags = AT_NO_AUTOMOUNT | (follow == Follow::No ? AT_SYMLINK_NOFOLLOW : 0) |
                      (freshness == Freshness::FromServer ? AT_STATX_FORCE_SYNC : 0);
    if (statx(directory, name, flags, wanted, &found) != 0) {
        error.assign(errno, std::system_category());
        return std::nullopt;
    }
    error.clear();
    const auto modified =
        std::chrono::seconds(found.stx_mtime.tv_sec) + std::chrono::nanoseconds(found.stx_mtime.tv_nsec);
    return FileState{.modified = FileTime(modified),
                     .inode = found.stx_ino,
                     .size = found.stx_size,
                     .device = found.stx_dev_major << 20 | found.stx_dev_minor,
                     .isDirectory = S_ISDIR(found.stx_mode),
                     .isRegular = S_ISREG(found.stx_mode),
                     .hasOtherLinks = found.stx_nlink > 1};
}

std::optional<FileState> readFileState(const char *path, std::error_code &error)
{
    return readFileState(AT_FDCWD, path, Follow::No, error);
}

bool saysMissing(const std::error_code &error)
{
    return error.value() == ENOENT || error.value() == ENOTDIR || error.value() == ENAMETOOLONG ||
           error.value() == ELOOP;
}

} // namespace vantle
