// SPDX-License-Identifier: MIT
#include "watchfolder/FileState.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace vantle {

namespace {

FileTime fileTime(const statx_timestamp &time)
{
    return FileTime(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

std::optional<FileState> readState(int directory, const char *name, int flags, std::error_code &error)
{
    constexpr unsigned kWanted =
        STATX_TYPE | STATX_MTIME | STATX_CTIME | STATX_INO | STATX_SIZE | STATX_NLINK;
    struct statx found = {};
    if (statx(directory, name, AT_NO_AUTOMOUNT | flags, kWanted, &found) != 0) {
        error.assign(errno, std::system_category());
        return std::nullopt;
    }
    error.clear();
    return FileState{.modified = fileTime(found.stx_mtime),
                     .changed = fileTime(found.stx_ctime),
                     .inode = found.stx_ino,
                     .size = found.stx_size,
                     .device = found.stx_dev_major << 20 | found.stx_dev_minor,
                     .isDirectory = S_ISDIR(found.stx_mode),
                     .isRegular = S_ISREG(found.stx_mode),
                     .hasOtherLinks = found.stx_nlink > 1};
}

} // namespace

std::optional<FileState> readFileState(int directory, const char *name, Follow follow, std::error_code &error,
                                       Freshness freshness)
{
    const int flags = (follow == Follow::No ? AT_SYMLINK_NOFOLLOW : 0) |
                      (freshness == Freshness::FromServer ? AT_STATX_FORCE_SYNC : 0);
    return readState(directory, name, flags, error);
}

std::optional<FileState> readFileState(int descriptor, std::error_code &error)
{
    return readState(descriptor, "", AT_EMPTY_PATH, error);
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
