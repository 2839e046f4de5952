// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/Export.h"
#include "watchfolder/FileTime.h"

#include <QtCore/QString>
#include <QtCore/QUrl>

#include <optional>

namespace vantle {

struct FileState;

/// One file or directory as the inventory knows it: a value, without any tie to the watcher.
class VANTLE_WATCHFOLDER_EXPORT VRXWatchFolderItem
{
public:
    /// Reads the item's state; what can't be read is logged and stays absent.
    explicit VRXWatchFolderItem(const QUrl &fileURL);
    /// With a state that was read before.
    VRXWatchFolderItem(QUrl fileURL, const std::optional<FileState> &state);

    /// The file URL of the item.
    QUrl URL() const { return m_url; }
    /// The path of the URL.
    [[nodiscard]] QString path() const;
    /// False when the state could not be read.
    [[nodiscard]] bool isDirectory() const { return m_isDirectory; }

    /// To the nanosecond; absent when it could not be read.
    [[nodiscard]] std::optional<FileTime> lastModificationDate() const { return m_modified; }
    /// For inventories that have read it anew.
    void setLastModificationDate(std::optional<FileTime> date) { m_modified = date; }

    /// In bytes; 0 when the state could not be read.
    [[nodiscard]] quint64 size() const { return m_size; }
    /// 0 when the state could not be read.
    [[nodiscard]] quint64 inode() const { return m_inode; }
    /// 0 when the state could not be read.
    [[nodiscard]] quint32 device() const { return m_device; }

    /// Designates the file by device and inode; for debugging output.
    [[nodiscard]] QUrl fileReferenceURL() const;
    /// The same for two names of one file.
    [[nodiscard]] QString uniqueID() const;
    /// For logs.
    [[nodiscard]] QString debugDescription() const;

private:
    void apply(const std::optional<FileState> &state);

    QUrl m_url;
    std::optional<FileTime> m_modified;
    quint64 m_size = 0;
    quint64 m_inode = 0;
    quint32 m_device = 0;
    bool m_isDirectory = false;
};

} // namespace vantle
