// SPDX-License-Identifier: MIT
#include "apps/vantlectl/obs/RunningObs.h"

#include <QtCore/QFile>

#include <filesystem>

#include <unistd.h>

namespace vantle::ctl::obs {

using namespace Qt::StringLiterals;

namespace {

namespace fs = std::filesystem;

QList<QByteArray> linesOf(const QString &file)
{
    QFile opened(file);
    return opened.open(QFile::ReadOnly) ? opened.readAll().split('\n') : QList<QByteArray>();
}

/// What the kernel says of a socket that listens.
struct Listener
{
    uid_t owner;
    QByteArray inode;
};

std::optional<Listener> listenerOn(quint16 port)
{
    constexpr qsizetype kLocalAddress = 1;
    constexpr qsizetype kState = 3;
    constexpr qsizetype kOwner = 7;
    constexpr qsizetype kInode = 9;
    for (const QString &table : {u"/proc/net/tcp"_s, u"/proc/net/tcp6"_s}) {
        for (const QByteArray &line : linesOf(table)) {
            const QList<QByteArray> fields = line.simplified().split(' ');
            if (fields.size() > kInode && fields[kState] == "0A" &&
                fields[kLocalAddress].split(':').last().toUShort(nullptr, 16) == port)
                return Listener{fields[kOwner].toUInt(), fields[kInode]};
        }
    }
    return std::nullopt;
}

bool hasSocket(const fs::path &process, const std::string &socket)
{
    std::error_code error;
    for (fs::directory_iterator entry(process / "fd", error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code gone;
        if (fs::read_symlink(entry->path(), gone) == socket)
            return true;
    }
    return false;
}

/// In ticks of the clock since the system was started. The name before it may hold anything.
QByteArray startTime(const fs::path &process)
{
    constexpr qsizetype kAfterName = 19;
    const QByteArray line = linesOf(QString::fromStdString(process / "stat")).value(0);
    return line.sliced(line.lastIndexOf(')') + 1).simplified().split(' ').value(kAfterName);
}

} // namespace

bool isAnothersServer(quint16 port)
{
    const auto listener = listenerOn(port);
    return listener && listener->owner != ::geteuid();
}

QString serverRun(quint16 port)
{
    const auto listener = listenerOn(port);
    if (!listener)
        return {};
    const std::string socket = "socket:[" + listener->inode.toStdString() + "]";
    std::error_code error;
    for (fs::directory_iterator entry("/proc", error), end; !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (name.find_first_not_of("0123456789") == std::string::npos && hasSocket(entry->path(), socket))
            return QString::fromStdString(name) + u'.' + QString::fromLatin1(startTime(entry->path()));
    }
    return {};
}

} // namespace vantle::ctl::obs
