// SPDX-License-Identifier: MIT
#include "VantlePresets/store/PresetsManagerPrivate.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/store/NameRules.h"
#include "VantlePresets/store/PresetsFolder.h"
#include "watchfolder/VRXWatchFolder.h"

#include <utility>

namespace vantle {

using namespace Qt::StringLiterals;

std::optional<std::size_t> documentHash(const VantlePreset &preset)
{
    try {
        return preset.documentHash();
    } catch (const EncodingError &) {
        return std::nullopt;
    }
}

void PresetsManager::Private::start(const QStringList &dataDirectories)
{
    if (dataDirectories.isEmpty())
        return;
    wantedFolder = presetsFolderPath(dataDirectories.first());
    try {
        ensureFolder(wantedFolder);
        folder = wantedFolder;
        watchFolder();
    } catch (const std::exception &error) { // also: no thread is to be had
        const QString reason = QString::fromUtf8(error.what());
        failStart(reason, reason);
    }
}

void PresetsManager::Private::watchFolder()
{
    reconciler = std::make_shared<FolderReconciler>(queue, *this);
    watcher = std::make_shared<VRXWatchFolder>(folder, reconciler);
    watcher->setNoticesReplacements(true);
    files = std::make_unique<PresetFiles>(
        folder.toStdString(), watcher,
        [watcher = watcher, reconciler = reconciler](const std::string &path) {
            watcher->checkChangesAtPaths({QString::fromStdString(path)},
                                         [reconciler, path] { reconciler->add(path); });
        },
        [this](const QString &name, const QString &reason) {
            queue.post([this, name, reason] { deletionEnded(name, reason); });
        });
    WatchFolderError error;
    if (watcher->startWatching(&error))
        return;
    if (error.code == WatchFolderError::FolderIsFile)
        error.reason = u"Not a directory"_s;
    failStart(error.description, error.reason.isEmpty() ? error.description : error.reason);
}

void PresetsManager::Private::failStart(const QString &logged, const QString &reason)
{
    startError = escapedControls(wantedFolder + ": "_L1 + reason + groupHint(wantedFolder));
    logLine("Error to create directory or start watching: "_L1 + logged);
    // Queued: nobody can have connected during construction.
    QMetaObject::invokeMethod(
        &q, [this] { Q_EMIT q.startFailed(*startError); }, Qt::QueuedConnection);
}

void PresetsManager::Private::folderBecameUnreachable()
{
    if (!isLoaded && !startError) {
        startError = escapedControls(wantedFolder + ": The folder was removed before it was read"_L1);
        Q_EMIT q.startFailed(*startError);
    }
    Q_EMIT q.folderBecameUnreachable();
}

void PresetsManager::Private::stop()
{
    if (!watcher)
        return;
    q.blockSignals(true); // the manager is about to go
    finishFileTasks();    // first, while the watcher still knows which changes are the store's own
    reconciler->cancel();
    watcher->stopWatching();
}

void PresetsManager::Private::finishFileTasks()
{
    if (!files)
        return;
    do {
        files->wait();
        queue.runAll(); // an outcome can lead to another save, under a name that is free
    } while (savesInFlight > 0);
}

std::shared_ptr<VantlePreset>
PresetsManager::Private::addAndSelect(const std::shared_ptr<VantlePreset> &preset)
{
    insert(std::make_shared<ListedPreset>(preset));
    announceList();
    q.setSelectedPreset(preset);
    return preset;
}

void PresetsManager::Private::insert(const Entry &entry)
{
    const int row = index.insertionRow(*entry);
    Q_EMIT q.rowAboutToBeInserted(row);
    index.insert(row, entry);
    Q_EMIT q.rowInserted(row);
}

void PresetsManager::Private::removeEntry(const Entry &entry)
{
    if (nameEdit == entry->preset)
        nameEdit.reset();
    if (selected == entry->preset)
        setSelection(nullptr);
    if (index.find(entry->preset.get()) != entry) // an observer of the selection was faster
        return;
    if (!isLoaded)
        namesLeftEarly.insert(entry->name);
    const int row = index.rowOf(*entry);
    Q_EMIT q.rowAboutToBeRemoved(row);
    index.remove(row);
    Q_EMIT q.rowRemoved(row);
}

void PresetsManager::Private::moveEntry(const Entry &entry, const QString &name)
{
    if (!isLoaded)
        namesLeftEarly.insert(entry->name);
    recover(PresetsFailure::Operation::save, pathOf(entry->name));
    ListedPreset moved = *entry;
    moved.setName(name);
    const int from = index.rowOf(*entry);
    const int target = index.insertionRow(moved); // counted with the entry in its old place
    const int to = target > from ? target - 1 : target;
    if (to == from) {
        index.rename(entry, name, from, to);
        return;
    }
    Q_EMIT q.rowAboutToBeMoved(from, target);
    index.rename(entry, name, from, to);
    Q_EMIT q.rowMoved(from, target);
}

void PresetsManager::Private::setSelection(const std::shared_ptr<VantlePreset> &preset)
{
    selected = preset;
    Q_EMIT q.selectedPresetChanged(preset);
}

void PresetsManager::Private::startSave(const Entry &entry, Way way)
{
    entry->isRenameDue = entry->isRenameDue || way == Way::rename;
    const auto hash = documentHash(*entry->preset);
    if (!files || !hash)
        return;
    const PresetFiles::Save save{entry->file, entry->name, entry->preset->encoded(document::Format::compact),
                                 entry->documentHash != hash};
    entry->documentHash = hash;
    ++entry->savesInFlight;
    ++savesInFlight;
    // Weak: a preset must not be destroyed on the file thread.
    const auto done = [this, weak = std::weak_ptr(entry), hasEdits = save.hasEdits,
                       name = save.name](const PresetFiles::Result &result) {
        queue.post([this, weak, hasEdits, name, result] {
            --savesInFlight;
            if (const auto saved = weak.lock())
                finishSave(saved, hasEdits, name, result);
        });
    };
    if (entry->isRenameDue)
        files->rename(save, done);
    else
        files->write(save, done);
}

void PresetsManager::Private::finishSave(const Entry &entry, bool hadEdits, const QString &name,
                                         const PresetFiles::Result &result)
{
    const auto outcome = result.outcome;
    --entry->savesInFlight;
    // Another name's save will tell; of a preset that is not listed any more nobody wants to know.
    if (outcome == PresetFiles::Outcome::failed && entry->name == name)
        fail({PresetsFailure::Operation::save, name, pathOf(name), result.reason});
    else
        recover(PresetsFailure::Operation::save, pathOf(name));
    if (outcome == PresetFiles::Outcome::written || outcome == PresetFiles::Outcome::overtaken)
        entry->refusedNames.clear();
    const bool isOnDisk = outcome != PresetFiles::Outcome::failed && outcome != PresetFiles::Outcome::refused;
    if (!isOnDisk && hadEdits)
        entry->documentHash.reset(); // the next save is one with edits
    if (isOnDisk && entry->savesInFlight == 0)
        entry->isRenameDue = false;
    if (outcome == PresetFiles::Outcome::outdated || outcome == PresetFiles::Outcome::overtaken)
        entry->wasChangedMeanwhile = true;
    if (entry->savesInFlight > 0 || index.find(entry->preset.get()) != entry)
        return;
    if (outcome == PresetFiles::Outcome::refused)
        giveFreeName(entry);
    else if (std::exchange(entry->wasChangedMeanwhile, false))
        lookAgain(entry->name);
}

/// Another process had the idea of the same name first: both presets stay.
void PresetsManager::Private::giveFreeName(const Entry &entry)
{
    if (nameEdit == entry->preset) {
        Q_EMIT q.nameEditMustEnd(entry->preset);
        if (index.find(entry->preset.get()) != entry || entry->savesInFlight > 0)
            return;
    }
    entry->refusedNames.append(entry->name);
    const QString name = uniqueName(entry->refusedNames.first(), [&](const QString &n) {
        return entry->refusedNames.contains(n) || index.isTaken(n, entry->preset.get()) ||
               reconciler->isUnreadable(n);
    });
    entry->preset->setName(name);
    moveEntry(entry, name);
    startSave(entry, Way::rename);
    announceList();
}

/// Lets the file itself say what has become of it, after the file tasks that have been started. On the
/// watcher's queue, in the order of its reports: the watcher knows of the file that is read.
void PresetsManager::Private::lookAgain(const QString &name)
{
    files->start([watcher = watcher, reconciler = reconciler, path = pathOf(name)] {
        watcher->checkChangesAtPaths(
            {path}, [reconciler, path = path.toStdString()] { reconciler->readAgain(path); });
    });
}

QString PresetsManager::Private::pathOf(const QString &name) const
{
    return folder + u'/' + name + ".json"_L1;
}

void PresetsManager::Private::fail(const PresetsFailure &failure)
{
    failures.add(failure);
    Q_EMIT q.failed(failure);
}

void PresetsManager::Private::recover(PresetsFailure::Operation operation, const QString &path)
{
    if (const auto ended = failures.take(operation, path))
        Q_EMIT q.recovered(*ended);
}

void PresetsManager::Private::retry(const PresetsFailure &failure)
{
    switch (failure.operation) {
    case PresetsFailure::Operation::load:
        lookAgain(failure.name);
        break;
    case PresetsFailure::Operation::save:
        if (const auto entry = index.findNamed(failure.name))
            q.save(entry->preset);
        break;
    case PresetsFailure::Operation::deletion:
        files->remove(failure.name, nullptr);
        break;
    }
}

void PresetsManager::Private::deletionEnded(const QString &name, const QString &reason)
{
    if (!reason.isEmpty())
        return fail({PresetsFailure::Operation::deletion, name, pathOf(name), reason});
    reconciler->forget(pathOf(name).toStdString());
    recover(PresetsFailure::Operation::deletion, pathOf(name));
}

void PresetsManager::Private::presetsLoaded(PresetIndex loaded)
{
    const bool isFirst = !std::exchange(isLoaded, true);
    if (isFirst)
        files->removeLeftovers();
    if (isFirst && !index.presets().isEmpty())
        loaded = withoutListed(std::move(loaded));
    Q_EMIT q.rowsAboutToBeReset();
    if (index.presets().isEmpty())
        index = std::move(loaded);
    else
        index.merge(loaded.takeEntries());
    Q_EMIT q.rowsReset();
    announceList();
    for (const QString &name : std::exchange(namesLeftEarly, {}))
        lookAgain(name); // what was read may be a file that this store was about to delete
    if (isFirst)
        Q_EMIT q.didLoad();
}

/// What was loaded less the files that this store wrote before the folder had been read.
PresetIndex PresetsManager::Private::withoutListed(PresetIndex loaded)
{
    PresetIndex::Entries entries = loaded.takeEntries();
    std::erase_if(entries, [this](const Entry &entry) {
        const auto known = index.findFile(entry->name);
        return known && known->file->name() == entry->name;
    });
    PresetIndex rest;
    rest.merge(std::move(entries));
    return rest;
}

void PresetsManager::Private::presetAdded(const Entry &added)
{
    const auto known = index.findFile(added->name);
    const auto stamp = added->file->stampAt(added->name);
    if (known && stamp && known->file->name() == added->name) {
        // It was away for a moment, or its removal was reported while a save was under way.
        if (known->file->stampAt(added->name) != stamp)
            presetUpdated(added->name, added->preset, *stamp);
        return;
    }
    insert(added);
    announceList();
}

/// Whether the file is what this store last wrote or read. A report that says otherwise was on its way while
/// a save was done.
bool PresetsManager::Private::isAsSaved(const ListedPreset &entry, const QString &name) const
{
    const auto own = entry.file->stampAt(name);
    return own && own == stampOf(fileSystemPath(pathOf(name)));
}

/// The listed preset that a report about a file of this name means.
PresetsManager::Private::Entry PresetsManager::Private::entryOfFile(const QString &name) const
{
    auto entry = index.findFile(name);
    if (entry && entry->name != name && isAsSaved(*entry, entry->name))
        return nullptr; // that is the file of another spelling: the preset's own is there
    return entry;
}

void PresetsManager::Private::presetRemoved(const QString &name)
{
    const auto entry = entryOfFile(name);
    if (!entry)
        return;
    if (entry->savesInFlight > 0) {
        entry->wasChangedMeanwhile = true;
        return;
    }
    if (const auto present = stampOf(fileSystemPath(pathOf(name)))) { // it has been made again since
        if (present != entry->file->stampAt(name))
            lookAgain(name);
        return;
    }
    removeEntry(entry);
    announceList();
}

void PresetsManager::Private::presetUpdated(const QString &name, const std::shared_ptr<VantlePreset> &source,
                                            const FileStamp &stamp)
{
    const auto entry = entryOfFile(name);
    if (!entry || !source)
        return;
    if (entry->savesInFlight > 0) {
        entry->wasChangedMeanwhile = true;
        return;
    }
    if (stamp != entry->file->stampAt(name) && isAsSaved(*entry, name))
        return;
    entry->file->set(name, stamp);
    // A file that says what it said before (it was only touched) must not undo edits.
    if (const auto hash = documentHash(*source); hash && hash == entry->documentHash)
        return;
    if (nameEdit == entry->preset)
        source->setName(entry->preset->name()); // what the user is typing stays
    if (updatePreset(*entry->preset, *source)) {
        entry->documentHash = documentHash(*entry->preset);
        Q_EMIT q.presetUpdated(entry->preset);
    } else { // a file of another class
        source->setName(entry->name);
        const auto replacement = std::make_shared<ListedPreset>(source);
        replacement->file->set(name, stamp);
        replacement->documentHash = documentHash(*source);
        removeEntry(entry);
        insert(replacement);
    }
    announceList();
}

} // namespace vantle
