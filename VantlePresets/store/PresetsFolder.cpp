// SPDX-License-Identifier: MIT
#include "VantlePresets/store/PresetsFolder.h"

#include "VantlePresets/document/FileAccess.h"

#include <QtCore/QDir>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <vector>

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantle {

using namespace Qt::StringLiterals;

QStringList machineDataDirectories()
{
    return {u"/var/lib"_s};
}

QString presetsFolderPath(const QString &dataDirectory)
{
    return QDir::cleanPath(QDir(dataDirectory).absolutePath()) + "/Orvalle/Streaming Presets"_L1;
}

void ensureFolder(const QString &path)
{
    const std::filesystem::path folder = fileSystemPath(path);
    std::error_code error;
    if (!std::filesystem::exists(folder, error))
        std::filesystem::create_directories(folder, error);
    if (error)
        throw std::system_error(error);
}

namespace {

constexpr std::size_t kAccountBuffer = 1 << 14;

/// Of the process's effective user; "" when the system doesn't know it.
QString userName()
{
    std::array<char, kAccountBuffer> buffer;
    passwd entry = {};
    passwd *found = nullptr;
    ::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found);
    return found ? QString::fromLocal8Bit(found->pw_name) : QString();
}

QString groupName(gid_t id)
{
    std::array<char, kAccountBuffer> buffer;
    group entry = {};
    group *found = nullptr;
    ::getgrgid_r(id, &entry, buffer.data(), buffer.size(), &found);
    return found ? QString::fromLocal8Bit(found->gr_name) : QString();
}

bool isInGroup(gid_t id)
{
    const int count = ::getgroups(0, nullptr);
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(count, 0)));
    groups.resize(static_cast<std::size_t>(std::max(::getgroups(count, groups.data()), 0)));
    return ::getegid() == id || std::find(groups.begin(), groups.end(), id) != groups.end();
}

} // namespace

QString groupHint(const QString &folder)
{
    // What is in the way is the folder, or the nearest of its parents that can be looked at.
    std::filesystem::path place = fileSystemPath(folder);
    unsigned needed = R_OK | X_OK; // the bits of a mode's class
    struct stat status = {};
    while (::stat(place.c_str(), &status) != 0) {
        needed = errno == ENOENT ? W_OK | X_OK : X_OK; // to be made, or passed through
        if (place == place.parent_path())
            return {};
        place = place.parent_path();
    }
    const bool isDenied =
        ::faccessat(AT_FDCWD, place.c_str(), static_cast<int>(needed), AT_EACCESS) != 0 && errno == EACCES;
    const bool wouldHelp = (status.st_mode >> 3 & needed) == needed && status.st_gid != 0 &&
                           status.st_uid != ::geteuid() && !isInGroup(status.st_gid);
    const QString user = userName();
    const QString group = groupName(status.st_gid);
    if (!isDenied || !wouldHelp || user.isEmpty() || group.isEmpty())
        return {};
    return "; members of the group \"%1\" may use it (as root: usermod -aG %1 %2; then log in again)"_L1.arg(
        group, user);
}

} // namespace vantle
