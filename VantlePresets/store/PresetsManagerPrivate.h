// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/store/FailureList.h"
#include "VantlePresets/store/FolderReconciler.h"
#include "VantlePresets/store/MainThreadQueue.h"
#include "VantlePresets/store/PresetFiles.h"
#include "VantlePresets/store/PresetIndex.h"
#include "VantlePresets/store/PresetsManager.h"

#include <QtCore/QPointer>
#include <QtCore/QSet>

namespace vantle {

/// What the store does behind its operations: the list and its signals, the way of a save, and what the
/// folder reports. Private to this folder.
class PresetsManager::Private final : public FolderReconciler::Receiver
{
public:
    using Entry = std::shared_ptr<ListedPreset>;

    explicit Private(PresetsManager &manager) : q(manager) {}

    void start(const QStringList &dataDirectories);
    void watchFolder();
    void failStart(const QString &logged, const QString &reason);
    void stop();
    /// Waits for the files, and for the saves that follow from their outcomes.
    void finishFileTasks();

    std::shared_ptr<VantlePreset> addAndSelect(const std::shared_ptr<VantlePreset> &preset);
    void insert(const Entry &entry);
    void removeEntry(const Entry &entry);
    void moveEntry(const Entry &entry, const QString &name);
    void setSelection(const std::shared_ptr<VantlePreset> &preset);
    void announceList() { Q_EMIT q.presetsChanged(index.presets()); }

    enum class Way { write, rename };
    void startSave(const Entry &entry, Way way);
    void finishSave(const Entry &entry, bool hadEdits, const QString &name,
                    const PresetFiles::Result &result);
    void giveFreeName(const Entry &entry);
    void lookAgain(const QString &name);
    [[nodiscard]] Entry entryOfFile(const QString &name) const;
    [[nodiscard]] bool isAsSaved(const ListedPreset &entry, const QString &name) const;
    [[nodiscard]] QString pathOf(const QString &name) const;

    void fail(const PresetsFailure &failure);
    void recover(PresetsFailure::Operation operation, const QString &path);
    void retry(const PresetsFailure &failure);
    void deletionEnded(const QString &name, const QString &reason);

    void presetsLoaded(PresetIndex loaded) override;
    void loadFailed(const PresetsFailure &failure) override { fail(failure); }
    void loadRecovered(const QString &path) override { recover(PresetsFailure::Operation::load, path); }
    void folderBecameUnreachable() override;
    void presetAdded(const Entry &added) override;
    void presetRemoved(const QString &name) override;
    void presetUpdated(const QString &name, const std::shared_ptr<VantlePreset> &source,
                       const FileStamp &stamp) override;
    PresetIndex withoutListed(PresetIndex loaded);

    PresetsManager &q;
    PresetIndex index;
    std::shared_ptr<VantlePreset> selected;
    std::shared_ptr<VantlePreset> nameEdit;
    QString wantedFolder; // "" without a directory
    QString folder;       // "" without one
    std::optional<QString> startError;
    bool isLoaded = false;
    QSet<QString> namesLeftEarly; // by presets that were renamed or removed before the folder had been read
    FailureList failures;
    QPointer<QObject> quitting; // lives while the application tells that it is about to quit
    int savesInFlight = 0;

    MainThreadQueue queue;
    std::shared_ptr<FolderReconciler> reconciler;
    std::shared_ptr<VRXWatchFolder> watcher;
    std::unique_ptr<PresetFiles> files;
};

/// Of the preset's document; nothing for a preset that has none (a frame rate that is not finite).
[[nodiscard]] std::optional<std::size_t> documentHash(const VantlePreset &preset);

} // namespace vantle
