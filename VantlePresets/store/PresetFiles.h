// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/document/FileAccess.h"
#include "watchfolder/WorkingQueue.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace vantle {

class VRXWatchFolder;

/// The file that a listed preset stands for: its name, and its stamp when the preset was last loaded from it
/// or saved to it. A preset that has never been in a file has none. Shared by the list and the file tasks.
/// Thread-safe.
class PresetFile
{
public:
    void set(const QString &name, const FileStamp &stamp)
    {
        const std::lock_guard lock(m_mutex);
        m_name = name;
        m_stamp = stamp;
    }
    void clear()
    {
        const std::lock_guard lock(m_mutex);
        m_name.clear();
        m_stamp.reset();
    }
    /// "" for none.
    [[nodiscard]] QString name() const
    {
        const std::lock_guard lock(m_mutex);
        return m_name;
    }
    /// Nothing when the preset's file is not the one of this name.
    [[nodiscard]] std::optional<FileStamp> stampAt(const QString &name) const
    {
        const std::lock_guard lock(m_mutex);
        return m_name == name ? m_stamp : std::nullopt;
    }

private:
    mutable std::mutex m_mutex;
    QString m_name;
    std::optional<FileStamp> m_stamp;
};

/// Writes, renames and deletes preset files of one folder, one after the other in the order of the calls, on
/// a thread of its own with a lower priority. Outcomes are logged as one line. The watcher is told of each
/// change before others can see it, so that it does not come back as an event.
///
/// A file that is not the preset's own is never replaced or deleted: another process has made it, or could
/// not finish it, or it can't be read.
///
/// Called on one thread. Destruction waits for the tasks that were started.
class PresetFiles
{
public:
    enum class Outcome {
        written,
        overtaken, ///< written, but changed or removed, or gone with the folder, before the watcher could
                   ///< look
        outdated,  ///< not written: the file was changed or removed, and the preset has no edits
        refused,   ///< not written: a file of this name is somebody else's
        failed,
    };
    struct Result
    {
        Outcome outcome = Outcome::failed;
        QString reason; ///< of a failure
    };
    /// Called on the file thread.
    using Done = std::function<void(const Result &)>;

    struct Save
    {
        std::shared_ptr<PresetFile> file;
        QString name;
        QByteArray document;
        bool hasEdits = true; ///< since the preset was loaded or saved; edits win over changes of others
    };

    /// Told, on the file thread, of a file of somebody else's that the watcher will not report.
    using FileAppeared = std::function<void(const std::string &path)>;

    /// Told, on the file thread, how a deletion ended: without a reason when the file is gone.
    using DeletionEnded = std::function<void(const QString &name, const QString &reason)>;

    PresetFiles(std::string folder, std::shared_ptr<VRXWatchFolder> watcher, FileAppeared fileAppeared,
                DeletionEnded deletionEnded);
    ~PresetFiles();
    PresetFiles(const PresetFiles &) = delete;
    PresetFiles &operator=(const PresetFiles &) = delete;

    void write(const Save &save, const Done &done);
    /// Writes the new file, then deletes the preset's earlier one; a failure leaves that. When the earlier
    /// file was changed by others and the preset has no edits, the file itself gets the new name.
    void rename(const Save &save, const Done &done);
    /// Deletes the preset's file, if it has one.
    void remove(const std::shared_ptr<PresetFile> &file);
    /// Deletes the file of this name, whosever it is. The preset, if one is given, stands for it no longer.
    void remove(const QString &name, const std::shared_ptr<PresetFile> &file);
    /// Deletes what killed processes left behind.
    void removeLeftovers();
    /// Runs a task after those that were started before.
    void start(std::function<void()> task);

    void wait();

private:
    [[nodiscard]] std::string pathOf(const QString &name) const;
    [[nodiscard]] Result saveNow(const Save &save) const;
    [[nodiscard]] Result renameNow(const Save &save) const;
    [[nodiscard]] Outcome writeNow(const Save &save) const;
    [[nodiscard]] bool moveChangedFile(const Save &save, const QString &oldName) const;
    void takeAway(const std::string &path, const std::function<void()> &change) const;
    void removeNow(const QString &name) const;

    std::string m_folder;
    std::shared_ptr<VRXWatchFolder> m_watcher;
    FileAppeared m_fileAppeared;
    DeletionEnded m_deletionEnded;
    WorkingQueue m_queue{QualityOfService::Utility};
};

} // namespace vantle
