// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/store/FolderReconciler.h"
#include "VantlePresets/store/MainThreadQueue.h"
#include "VantlePresets/store/PresetIndex.h"
#include "VantlePresets/store/PresetSaver.h"
#include "VantlePresets/store/PresetsManager.h"

#include <QtCore/QPointer>

namespace vantle {

/// What the store does behind its operations: the list and its signals, and what the folder reports. Private
/// to this folder.
class PresetsManager::Private final : public FolderReconciler::Receiver, public PresetSaver::List
{
public:
    using Entry = std::shared_ptr<ListedPreset>;

    explicit Private(PresetsManager &manager) : q(manager) {}

    void start(const QStringList &dataDirectories);
    void watchFolder();
    void failStart(const QString &logged, const QString &reason);
    void stop();

    std::shared_ptr<VantlePreset> addAndSelect(const std::shared_ptr<VantlePreset> &preset,
                                               const WantedName &wanted);
    void insert(const Entry &entry);
    void removeEntry(const Entry &entry);
    void moveEntry(const Entry &entry, const QString &name);
    Entry exchange(const Entry &entry, const std::shared_ptr<VantlePreset> &source,
                   const std::shared_ptr<PresetFile> &file);
    void setSelection(const std::shared_ptr<VantlePreset> &preset);
    void announceList() { Q_EMIT q.presetsChanged(index.presets()); }
    void save(const std::shared_ptr<VantlePreset> &preset, PresetSaver::Precedence precedence,
              const std::filesystem::path &like = {});
    void retry(const PresetsFailure &failure);

    [[nodiscard]] Entry entryOfFile(const QString &name) const;
    [[nodiscard]] bool isInFolder(const QString &name) const;

    // Of the saver.
    [[nodiscard]] bool isListed(const Entry &entry) const override;
    bool endNameEdit(const Entry &entry) override;
    [[nodiscard]] QString nextName(const Entry &entry) const override;
    void renamePreset(const Entry &entry, const QString &name) override;
    void removePreset(const Entry &entry) override;
    void fileDeleted(const QString &name) override;
    void failed(const PresetsFailure &failure) override { Q_EMIT q.failed(failure); }
    void recovered(const PresetsFailure &failure) override { Q_EMIT q.recovered(failure); }

    // Of the folder.
    void presetsLoaded(PresetIndex loaded) override;
    void folderBecameUnreachable() override;
    void folderIsUnread(const QString &reason) override;
    void presetAdded(const Entry &added) override;
    void presetRemoved(const QString &name) override;
    void presetUpdated(const KnownFile &read, const std::shared_ptr<VantlePreset> &source) override;
    void presetGone(const KnownFile &read) override;
    void readLater(const QString &name) override;
    void loadFailed(const PresetsFailure &failure) override { saver->fail(failure); }
    void loadRecovered(const QString &name) override
    {
        saver->recover(PresetsFailure::Operation::load, name);
    }

    PresetsManager &q;
    PresetIndex index;
    std::shared_ptr<VantlePreset> selected;
    std::shared_ptr<VantlePreset> nameEdit;
    QString wantedFolder; // "" without a directory
    QString folder;       // "" without one
    std::optional<QString> startError;
    bool isLoaded = false;
    QPointer<QObject> quitting; // lives while the application tells that it is about to quit

    MainThreadQueue queue;
    std::shared_ptr<FolderReconciler> reconciler;
    std::shared_ptr<VRXWatchFolder> watcher;
    std::unique_ptr<PresetSaver> saver; // none without a folder

private:
    [[nodiscard]] PresetIndex withoutKnown(PresetIndex loaded) const;
    [[nodiscard]] bool isOutdated(const Entry &entry, const KnownFile &read);
    void takeOver(const Entry &entry, const std::shared_ptr<VantlePreset> &source, const KnownFile &read);

    QSet<QString> toReadLater; // names of files
};

} // namespace vantle
