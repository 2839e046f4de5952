// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/store/FileRelation.h"
#include "VantlePresets/store/PresetFile.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace vantle {

class VRXWatchFolder;
class WorkingQueue;

/// Writes, renames and deletes preset files of one folder, one after the other in the order of the calls, on
/// a thread of its own with a lower priority. Outcomes are logged as one line. The watcher is told of each
/// change while it is made, so that it does not come back as an event.
///
/// A file that is not the preset's own is never replaced or deleted: another process has made it, or could
/// not finish it, or it can't be read. Looking at a file and changing it then happen in one turn of the
/// folder (see FolderTurn).
///
/// Called on one thread; what is told is told on the file thread, or at once, as a failure, when no thread is
/// to be had.
/// Destruction waits for the tasks that were started.
class PresetFiles
{
public:
    using Outcome = FileRelation::Outcome;
    struct Result
    {
        Outcome outcome = Outcome::failed;
        QString reason; ///< of a failure
    };
    using Done = std::function<void(const Result &)>;

    /// What becomes of a file that was changed or removed since the store has read or written it.
    enum class Precedence {
        unedited, ///< it stays as it is; the preset has nothing new to say
        file,     ///< it stays as it is
        edits,    ///< it is replaced
    };

    struct Save
    {
        std::shared_ptr<PresetFile> file;
        QString name;
        QByteArray document;
        std::size_t documentHash = 0;
        Precedence precedence = Precedence::edits;
        bool takesOldNameAway = false; ///< the file of the preset's earlier name goes
        std::filesystem::path like;    ///< a new file gets the permissions of this one
    };

    /// Told how a deletion ended, also of a name that a rename leaves.
    struct Deletion
    {
        QString name;
        QString reason;         ///< "" when the file is gone
        bool isForeign = false; ///< it was left alone, since somebody else has changed it
    };
    using DeletionEnded = std::function<void(const Deletion &)>;

    PresetFiles(std::string folder, std::shared_ptr<VRXWatchFolder> watcher, DeletionEnded deletionEnded);
    ~PresetFiles();
    PresetFiles(const PresetFiles &) = delete;
    PresetFiles &operator=(const PresetFiles &) = delete;

    /// Under a new name: without edits the file itself gets it, else the new one is written and then the
    /// earlier one deleted, if that is to be taken away; a failure leaves that.
    void save(Save save, Done done);
    /// Deletes the preset's file, if it has one.
    void remove(const std::shared_ptr<PresetFile> &file);
    /// Deletes the file of this name, whosever it is. The preset, if one is given, stands for it no longer.
    void remove(const QString &name, const std::shared_ptr<PresetFile> &file);
    /// Deletes what killed processes left behind.
    void removeLeftovers();
    /// Runs a task after those that were started before; without a thread, the other function at once, with
    /// the reason.
    void start(std::function<void()> task, const std::function<void(const QString &reason)> &refused);

    void wait();

private:
    class Turn;
    enum class Present { nothing, own, changed, foreign };

    [[nodiscard]] std::string pathOf(const QString &name) const;
    [[nodiscard]] Present look(const PresetFile &file, const QString &name) const;
    Result saveNow(const Save &save);
    Outcome moveOrWrite(const Save &save);
    Outcome write(const Save &save);
    Outcome move(const Save &save, const QString &oldName);
    void removeNow(const QString &name, const std::function<bool()> &mayRemove);
    void endDeletion(const Deletion &deletion, const QString &complaint) const;

    const std::string m_folder;
    const std::shared_ptr<VRXWatchFolder> m_watcher;
    const DeletionEnded m_deletionEnded;
    bool m_isTurnRefused = false;          // on the file thread
    std::unique_ptr<WorkingQueue> m_queue; // none until a thread was needed and to be had
};

} // namespace vantle
