// SPDX-License-Identifier: MIT
#include "watchfolder/WatchFolderEnvironment.h"

#include "base/NativePath.h"
#include "base/RunLoop.h"

#include <QtCore/QTimer>

#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace vantle {

namespace {

constexpr size_t kLongestPath = 1024;

struct FileSystemType
{
    unsigned long number;
    const char *name;
    bool isShared = false; // with other machines, or with what else is behind it
};

// statfs gives numbers here and not names; these are the ones of statfs(2), linux/magic.h and the file
// systems' own sources that one meets.
constexpr std::array kFileSystemTypes = {
    FileSystemType{0xEF53, "ext4"},
    FileSystemType{0x01021994, "tmpfs"},
    FileSystemType{0x58465342, "xfs"},
    FileSystemType{0x9123683E, "btrfs"},
    FileSystemType{0x794C7630, "overlay"},
    FileSystemType{0x2FC12FC1, "zfs"},
    FileSystemType{0x4D44, "msdos"},
    FileSystemType{0x2011BAB0, "exfat"},
    FileSystemType{0xF2F52010, "f2fs"},
    FileSystemType{0x9660, "isofs"},
    FileSystemType{0x517B, "smbfs", true},
    FileSystemType{0xFE534D42, "smb2", true},
    FileSystemType{0xFF534D42, "cifs", true},
    FileSystemType{0x6969, "nfs", true},
    FileSystemType{0x65735546, "fuse", true},
    FileSystemType{0x01021997, "9p", true},
    FileSystemType{0x00C36400, "ceph", true},
    FileSystemType{0x5346414F, "afs", true},
    FileSystemType{0x6B414653, "afs", true},
    FileSystemType{0x73757245, "coda", true},
    FileSystemType{0x564C, "ncpfs", true},
    FileSystemType{0x0BD00BD0, "lustre", true},
    FileSystemType{0x47504653, "gpfs", true},
    FileSystemType{0x19830326, "beegfs", true},
    FileSystemType{0xAAD7AAEA, "panfs", true},
    FileSystemType{0x20030528, "orangefs", true},
    FileSystemType{0x01161970, "gfs2", true},
    FileSystemType{0x7461636F, "ocfs2", true},
    FileSystemType{0x786F4256, "vboxsf", true},
    FileSystemType{0xBACBACBC, "vmhgfs", true},
};

WatchFolderEnvironment::Timer startMainThreadTimer(std::chrono::milliseconds interval,
                                                   std::function<void()> tick)
{
    struct Repetition
    {
        QTimer *timer = nullptr; // made and destroyed on the main thread
        bool ended = false;      // likewise
    };
    const auto repetition = std::make_shared<Repetition>();
    RunLoop::main()->post([repetition, interval, tick = std::move(tick)] {
        if (repetition->ended)
            return;
        repetition->timer = new QTimer;
        repetition->timer->setTimerType(Qt::CoarseTimer);
        QObject::connect(repetition->timer, &QTimer::timeout, repetition->timer, tick);
        repetition->timer->start(interval);
    });
    return {repetition.get(), [repetition](void *) {
                RunLoop::main()->post([repetition] {
                    repetition->ended = true;
                    delete repetition->timer;
                });
            }};
}

} // namespace

std::optional<QString> fileSystemTypeName(const QString &path)
{
    const std::string native = nativePath(path);
    struct statfs found = {};
    if (native.empty() || native.size() > kLongestPath || statfs(native.c_str(), &found) != 0)
        return std::nullopt;
    // Some architectures sign-extend the 32-bit numbers.
    const unsigned long number = static_cast<unsigned long>(found.f_type) & 0xFFFFFFFF;
    const auto *const type =
        std::find_if(kFileSystemTypes.begin(), kFileSystemTypes.end(),
                     [number](const FileSystemType &candidate) { return candidate.number == number; });
    if (type == kFileSystemTypes.end())
        return QStringLiteral("0x%1").arg(number, 0, 16);
    // What is not on a block device has a device number without a major part.
    struct stat status = {};
    if (std::string_view(type->name) == "fuse" && stat(native.c_str(), &status) == 0 &&
        major(status.st_dev) != 0)
        return QStringLiteral("fuseblk");
    return QString::fromLatin1(type->name);
}

bool isSharedFileSystem(const QString &type)
{
    return type.startsWith(QLatin1String("AvidUnityISIS")) ||
           std::any_of(kFileSystemTypes.begin(), kFileSystemTypes.end(),
                       [&type](const FileSystemType &candidate) {
                           return candidate.isShared && type == QLatin1String(candidate.name);
                       });
}

WatchFolderEnvironment WatchFolderEnvironment::system()
{
    return {.fileSystemTypeName = vantle::fileSystemTypeName,
            .startTimer = startMainThreadTimer,
            .startStream = startKernelEventStream};
}

} // namespace vantle
