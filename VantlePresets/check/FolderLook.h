// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace vantle::check {

/// The folder of a path that may be relative and need not be there.
[[nodiscard]] inline QFileInfo folderOf(const QString &path)
{
    return QFileInfo(QDir::cleanPath(QDir::current().absoluteFilePath(path)));
}

/// Why files can't be put into the folder, or it can't be made: its nearest parent that is there, and what is
/// wrong with it. "" when they can, as far as can be told without doing it.
[[nodiscard]] inline QString folderFault(const QString &path)
{
    QFileInfo nearest = folderOf(path);
    while (!nearest.exists() && !nearest.isRoot())
        nearest = QFileInfo(nearest.path());
    if (!nearest.isDir())
        return nearest.filePath() + QLatin1StringView(" is not a folder");
    if (!nearest.isWritable() || !nearest.isExecutable())
        return nearest.filePath() + QLatin1StringView(" can't be written to");
    return {};
}

} // namespace vantle::check
