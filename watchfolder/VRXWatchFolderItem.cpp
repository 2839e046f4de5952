// SPDX-License-Identifier: MIT
#include "watchfolder/VRXWatchFolderItem.h"

#include "base/NativePath.h"
#include "watchfolder/FileState.h"

#include <QtCore/QDebug>

namespace vantle {

VRXWatchFolderItem::VRXWatchFolderItem(const QUrl &fileURL) : m_url(fileURL)
{
    std::error_code error;
    apply(readFileState(nativePathOfUrl(fileURL).c_str(), error));
    if (error)
        qWarning().noquote() << fileURL.toString() << QString::fromStdString(error.message());
}

VRXWatchFolderItem::VRXWatchFolderItem(QUrl fileURL, const std::optional<FileState> &state)
    : m_url(std::move(fileURL))
{
    apply(state);
}

void VRXWatchFolderItem::apply(const std::optional<FileState> &state)
{
    if (!state)
        return;
    m_modified = state->modified;
    m_size = state->size;
    m_inode = state->inode;
    m_device = state->device;
    m_isDirectory = state->isDirectory;
}

QString VRXWatchFolderItem::path() const
{
    return displayPath(nativePathOfUrl(m_url));
}

QUrl VRXWatchFolderItem::fileReferenceURL() const
{
    return QUrl(QStringLiteral("file:///.file/id=%1.%2").arg(m_device).arg(m_inode));
}

QString VRXWatchFolderItem::uniqueID() const
{
    return fileReferenceURL().toString();
}

QString VRXWatchFolderItem::debugDescription() const
{
    const QString base =
        QStringLiteral("<VRXWatchFolderItem: 0x%1>").arg(reinterpret_cast<quintptr>(this), 0, 16);
    const QString kind = m_isDirectory ? QStringLiteral("DIR") : QStringLiteral("FILE");
    return base + QStringLiteral(" [%1], '%2' '%3'").arg(kind, uniqueID(), m_url.toString());
}

} // namespace vantle
