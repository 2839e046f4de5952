// SPDX-License-Identifier: MIT
#include "watchfolder/WatchFolderEnvironment.h"

#include "watchfolder/NativePath.h"
#include "watchfolder/RunLoop.h"

#include <QtCore/QTimer>

#include <sys/statfs.h>

#include <array>

namespace vantle {

namespace {

constexpr size_t longestPath = 1024;

struct FileSystemType
{
    unsigned long number;
    const char *name;
};

// statfs gives numbers here and not names; these are the ones of statfs(2) that one meets.
constexpr std::array fileSystemTypes = {
    FileSystemType{0x517B, "smbfs"},     FileSystemType{0xFE534D42, "smb2"},
    FileSystemType{0xFF534D42, "cifs"},  FileSystemType{0xEF53, "ext4"},
    FileSystemType{0x01021994, "tmpfs"}, FileSystemType{0x58465342, "xfs"},
    FileSystemType{0x9123683E, "btrfs"}, FileSystemType{0x6969, "nfs"},
    FileSystemType{0x65735546, "fuse"},  FileSystemType{0x794C7630, "overlay"},
    FileSystemType{0x2FC12FC1, "zfs"},   FileSystemType{0x4D44, "msdos"},
    FileSystemType{0x2011BAB0, "exfat"}, FileSystemType{0xF2F52010, "f2fs"},
    FileSystemType{0x9660, "isofs"},
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
    if (native.empty() || native.size() > longestPath || statfs(native.c_str(), &found) != 0)
        return std::nullopt;
    // Some architectures sign-extend the 32-bit numbers.
    const unsigned long number = static_cast<unsigned long>(found.f_type) & 0xFFFFFFFF;
    for (const FileSystemType &type : fileSystemTypes) {
        if (type.number == number)
            return QString::fromLatin1(type.name);
    }
    return QStringLiteral("0x%1").arg(number, 0, 16);
}

WatchFolderEnvironment WatchFolderEnvironment::system()
{
    return {.fileSystemTypeName = vantle::fileSystemTypeName,
            .startTimer = startMainThreadTimer,
            .startStream = startKernelEventStream};
}

} // namespace vantle
