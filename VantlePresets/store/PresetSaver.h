// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/store/FailureList.h"
#include "VantlePresets/store/MainThreadQueue.h"
#include "VantlePresets/store/PresetFiles.h"
#include "VantlePresets/store/PresetIndex.h"

#include <functional>
#include <memory>

namespace vantle {

class FolderReconciler;

/// The way of listed presets into their files: starts saves and deletions, follows what becomes of each by
/// the table of FileRelation, and keeps the failures that last. Main thread only.
class PresetSaver
{
public:
    using Entry = std::shared_ptr<ListedPreset>;

    /// The list, to the saver.
    class List
    {
    public:
        [[nodiscard]] virtual bool isListed(const Entry &entry) const = 0;
        /// Ends the edit of the preset's name, if one goes on. False when the preset is not listed or being
        /// saved afterwards.
        virtual bool endNameEdit(const Entry &entry) = 0;
        /// The first free name after one that was taken.
        [[nodiscard]] virtual QString nextName(const Entry &entry) const = 0;
        virtual void renamePreset(const Entry &entry, const QString &name) = 0;
        virtual void removePreset(const Entry &entry) = 0;
        /// This process has deleted the file, or moved it away.
        virtual void fileDeleted(const QString &name) = 0;
        virtual void failed(const PresetsFailure &failure) = 0;
        virtual void recovered(const PresetsFailure &failure) = 0;

    protected:
        ~List() = default;
    };

    PresetSaver(List &list, MainThreadQueue &queue, const QString &folder,
                std::shared_ptr<VRXWatchFolder> watcher, std::shared_ptr<FolderReconciler> reconciler);

    enum class Mode { write, rename };
    using Precedence = PresetFiles::Precedence;
    /// Of a preset with edits; one without never overwrites what others have changed.
    void save(const Entry &entry, Mode mode, Precedence precedence = Precedence::edits);
    /// Makes a file of the preset's name that holds no preset the preset's own. False when there is none.
    [[nodiscard]] bool takeBrokenFile(const Entry &entry);
    /// Deletes the preset's file.
    void remove(const Entry &entry);
    /// Deletes a file, whosever it is.
    void removeFile(const QString &name, const Entry &entry);
    void removeLeftovers() { m_files.removeLeftovers(); }

    /// Others have changed or removed the preset's file. True when that is to be applied now.
    [[nodiscard]] bool hear(const Entry &entry);
    /// Lets the file itself say what has become of it, after the file tasks that have been started.
    void reread(const QString &name);

    void fail(const PresetsFailure &failure);
    void recover(PresetsFailure::Operation operation, const QString &name);
    [[nodiscard]] const QList<PresetsFailure> &failures() const { return m_failures.all(); }

    /// Saves whose outcome is not known, and files that are to be read again.
    [[nodiscard]] bool isBusy() const { return m_savesUnderWay > 0 || m_looksUnderWay > 0; }
    /// Whether anything was asked of the files so far.
    [[nodiscard]] bool hasBegun() const { return m_hasBegun; }
    void waitForFiles() { m_files.wait(); }
    /// Waits for the files, and for the saves that follow from their outcomes.
    void finish();

    /// Of the file of this name.
    [[nodiscard]] QString pathOf(const QString &name) const;

private:
    void saveEnded(const Entry &entry, const QString &name, bool hadEdits, const PresetFiles::Result &result);
    void deletionEnded(const PresetFiles::Deletion &deletion);
    void lookAfterSave(const Entry &entry, PresetFiles::Outcome outcome);
    void resolveConflict(const Entry &entry);

    List &m_list;
    MainThreadQueue &m_queue;
    const QString m_folder;
    const std::shared_ptr<VRXWatchFolder> m_watcher;
    const std::shared_ptr<FolderReconciler> m_reconciler;
    FailureList m_failures;
    bool m_hasBegun = false;
    int m_savesUnderWay = 0;
    int m_looksUnderWay = 0;
    PresetFiles m_files;
};

/// Of the preset's document; nothing for a preset that has none (a frame rate that is not finite).
[[nodiscard]] std::optional<std::size_t> documentHash(const VantlePreset &preset);

} // namespace vantle
