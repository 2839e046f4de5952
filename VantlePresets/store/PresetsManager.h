// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/model/VantlePreset.h"
#include "VantlePresets/store/PresetsFailure.h"

#include <QtCore/QObject>
#include <QtCore/QUrl>

#include <functional>
#include <memory>
#include <optional>

namespace vantle {

class VRXWatchFolder;

using PresetsList = QList<std::shared_ptr<VantlePreset>>;

/// The store: the sorted list of the presets in one folder, the selected one, and their files.
///
/// Files that other processes add, change or delete show up in the list by themselves. Failures never
/// reach the caller: they are logged as one line (core/Log.h) and the store goes on with what it has.
/// Observers hear of them by failed() and recovered().
///
/// Main thread only: every operation and query checks it, and another thread is a programming fault. The
/// files are read, written and removed on threads of the store's own. Files that were asked for are on
/// disk when the manager has been destroyed, or the application has quit.
class VANTLE_PRESETS_EXPORT PresetsManager : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PresetsManager)
    Q_PROPERTY(vantle::PresetsList presets READ presets WRITE setPresets NOTIFY presetsChanged)
    Q_PROPERTY(std::shared_ptr<vantle::VantlePreset> selectedPreset READ selectedPreset WRITE
                   setSelectedPreset NOTIFY selectedPresetChanged)

public:
    /// Answers with the directories that may hold the machine's data, best first; only the first counts.
    using DirectoryLookup = std::function<QStringList()>;

    /// Works in "Orvalle/Streaming Presets" below the machine-wide data directory, /var/lib.
    PresetsManager();
    /// The same below the first directory of the answer. With an empty answer the manager works in
    /// memory alone.
    explicit PresetsManager(const DirectoryLookup &lookup);
    /// Waits for the file tasks that were started. On the main thread, as everything else.
    ~PresetsManager() override;

    /// Nothing when the directory was not found or could not be made.
    [[nodiscard]] std::optional<QUrl> presetsFolderURL() const;
    /// Null without a folder.
    [[nodiscard]] std::shared_ptr<VRXWatchFolder> watchFolder() const;

    /// Sorted by name, ascending, in the localized and case-insensitive order. Empty until the first
    /// inventory of the folder has been read.
    [[nodiscard]] const PresetsList &presets() const;
    /// Sorts the new list. Clears the selection when it is not in it. No file is touched.
    void setPresets(const PresetsList &presets);

    /// Why the folder can't be made, read or followed: the folder, the system's reason, and how a user gets
    /// the rights of the folder's group where these would do, in one line. Known when the constructor
    /// returns, but for a folder that goes before it has been read. Nothing when there is no directory.
    [[nodiscard]] std::optional<QString> startError() const;
    /// Whether the first inventory of the folder has been read; see didLoad().
    [[nodiscard]] bool isLoaded() const;

    /// One of presets(), or null.
    [[nodiscard]] const std::shared_ptr<VantlePreset> &selectedPreset() const;
    /// Selects and saves; every assignment of a preset saves it, the same preset included. A preset that
    /// is not listed (another process may just have removed it) changes nothing.
    void setSelectedPreset(const std::shared_ptr<VantlePreset> &preset);

    /// The first preset whose name is the same under canonical equivalence; null when there is none. Of
    /// several, one with exactly these code units is preferred.
    [[nodiscard]] std::shared_ptr<VantlePreset> presetWithName(const QString &name) const;
    /// The presets whose kind has the label ("RTMP"), in list order.
    [[nodiscard]] PresetsList presetsWithTypeName(const QString &typeName) const;

    /// Lists and selects a new preset, named "HLS Preset" or the first free "HLS Preset 2", ...
    std::shared_ptr<VantlePreset> addNewPreset(StreamingType type);
    /// Lists and selects a preset of the same kind with copies of the renditions and tracks. Connection
    /// fields are those of a new preset.
    std::shared_ptr<VantlePreset> duplicate(const std::shared_ptr<VantlePreset> &preset);
    /// Gives the preset the trimmed name and its file with it. `from` is its name before the user typed.
    /// False when the name is empty or another preset has it; the preset's name is `from` then. A name that
    /// the file system refuses is accepted here; its file fails to be written.
    bool rename(const std::shared_ptr<VantlePreset> &preset, const QString &from, const QString &to);
    /// Gives the listed preset what the other one's document keeps, name and identifier apart, and saves it
    /// over its file. A preset of another class takes its place in the list, with the name and an identifier
    /// of its own. Returns the one that is listed; null, and nothing has changed, when none was.
    std::shared_ptr<VantlePreset> replace(const std::shared_ptr<VantlePreset> &preset,
                                          const std::shared_ptr<VantlePreset> &source);
    /// Takes the preset off the list and deletes its file. A file that others have changed since stays, and
    /// is listed again. Nothing for a preset that is not listed.
    void remove(const std::shared_ptr<VantlePreset> &preset);
    /// Writes the preset's file in the background: a whole file or none, in the order of the calls. Without
    /// edits since it was loaded or saved, a preset does not overwrite a file that was changed or removed
    /// meanwhile; that change is applied. A file of the name that is not this preset's is never overwritten:
    /// the preset gets the next free name.
    void save(const std::shared_ptr<VantlePreset> &preset);
    /// The same for one who has based a few edits on what was read: when the file was changed or removed
    /// meanwhile, that is applied and the edits are gone; see presetUpdated().
    void saveUnlessChanged(const std::shared_ptr<VantlePreset> &preset);
    /// The same as save(); a file that is made gets mode, access list and, where possible, group of the file
    /// at the path.
    void saveLike(const std::shared_ptr<VantlePreset> &preset, const QString &path);
    /// Lets the next save of the listed preset replace a file of its name that holds no preset; when that
    /// save fails, it stays. False when there is none, or nothing can be read from it.
    bool replaceBrokenFile(const std::shared_ptr<VantlePreset> &preset);
    /// Saves the selected preset, if there is one.
    void saveSelectedPreset();
    /// Deletes a file of the folder in the background; a listed preset stays listed.
    void deletePresetFile(const QString &name);

    /// Whether the preset's document differs from the one that was last loaded or saved, or its file still
    /// has an earlier name because renaming failed. save() sets both right.
    [[nodiscard]] bool hasUnsavedEdits(const std::shared_ptr<VantlePreset> &preset) const;

    /// Tells the store that a view writes the preset's name while the user types. Until the edit ends,
    /// list order, lookups and saves go by the name of the preset's file. One edit at a time; the edit
    /// ends by itself when its preset leaves the list.
    void beginNameEdit(const std::shared_ptr<VantlePreset> &preset);
    /// Nothing when no edit goes on.
    void endNameEdit();
    /// The name of the preset's file without the extension, also while the name is being edited.
    [[nodiscard]] QString listedName(const std::shared_ptr<VantlePreset> &preset) const;

    /// The row in presets(), or -1.
    [[nodiscard]] int rowOf(const std::shared_ptr<VantlePreset> &preset) const;

    /// The failures that last, the oldest first: files of the folder that can't be read, presets whose last
    /// save failed, files that could not be deleted and are still there. What a load finds is complete with
    /// didLoad().
    [[nodiscard]] QList<PresetsFailure> failures() const;
    /// Tries again what failed: reads the file, saves the listed preset, deletes the file. The end comes as
    /// recovered(), another failure as failed(). Nothing when that failure has ended.
    void retry(const PresetsFailure &failure);

    /// Waits until the file tasks started so far are done. Their results need the event loop.
    void waitForFileTasks();
    /// Whether the outcome of a save is not known yet, or a file that others changed meanwhile has yet to be
    /// read; both come with the event loop.
    [[nodiscard]] bool hasPendingSaves() const;

Q_SIGNALS:
    /// The first inventory of the folder is in the list, however few presets it had. Without a directory
    /// neither this nor startFailed() comes; otherwise one of the two does, once, from the event loop. A
    /// start that failed for want of descriptors is tried again, and this follows when it works.
    void didLoad();
    /// With startError(). Whoever connects right after construction hears it.
    void startFailed(const QString &error);
    /// The presets folder is not at its path any more. Sent before didLoad(), that one never comes.
    void folderBecameUnreachable();

    /// After each operation and each change from outside that touches the list, once.
    void presetsChanged(const vantle::PresetsList &presets);
    /// At every assignment, also of the preset that is selected already.
    void selectedPresetChanged(const std::shared_ptr<vantle::VantlePreset> &preset);

    /// A change of the preset's file by another process was applied to the listed object.
    void presetUpdated(const std::shared_ptr<vantle::VantlePreset> &preset);

    /// A file could not be loaded, a preset not saved or a file not deleted; failures() has it. Again for
    /// the same file when it fails anew. Not for a preset that gets another name because its name is taken,
    /// for a save that had nothing new to write, for a file that is gone when it is read or deleted, nor for
    /// one that is still being written.
    void failed(const vantle::PresetsFailure &failure);
    /// The end of a failure: the file was loaded, saved or deleted after all, or is gone, or its preset is
    /// not listed under the name any more.
    void recovered(const vantle::PresetsFailure &failure);

    /// @{
    /// Rows in pairs for list models. A move goes before the row that stood at `to` at its start.
    void rowAboutToBeInserted(int row);
    void rowInserted(int row);
    void rowAboutToBeRemoved(int row);
    void rowRemoved(int row);
    void rowAboutToBeMoved(int from, int to);
    void rowMoved(int from, int to);
    void rowsAboutToBeReset();
    void rowsReset();
    /// @}

    /// A save is due while the preset's name is being edited: the view ends the edit now, as if the user
    /// had left the field.
    void nameEditMustEnd(const std::shared_ptr<vantle::VantlePreset> &preset);

private:
    class VANTLE_PRESETS_NO_EXPORT Private;
    std::unique_ptr<Private> d;
};

} // namespace vantle
