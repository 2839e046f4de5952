// SPDX-License-Identifier: MIT
#include "VantlePresets/store/PresetsManagerPrivate.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/store/NameRules.h"
#include "VantlePresets/store/PresetFile.h"
#include "VantlePresets/store/PresetsFolder.h"
#include "watchfolder/VRXWatchFolder.h"

#include <QtCore/QTimer>

#include <chrono>
#include <utility>

namespace vantle {

using namespace Qt::StringLiterals;

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
    saver = std::make_unique<PresetSaver>(*this, queue, folder, watcher, reconciler);
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
    folderIsUnread(u"The folder was removed before it was read"_s);
    Q_EMIT q.folderBecameUnreachable();
}

void PresetsManager::Private::folderIsUnread(const QString &reason)
{
    if (isLoaded || startError)
        return;
    startError = escapedControls(wantedFolder + ": "_L1 + reason);
    Q_EMIT q.startFailed(*startError);
}

void PresetsManager::Private::stop()
{
    if (!watcher)
        return;
    q.blockSignals(true); // the manager is about to go
    saver->finish();      // first, while the watcher still knows which changes are the store's own
    reconciler->cancel();
    watcher->stopWatching();
}

std::shared_ptr<VantlePreset>
PresetsManager::Private::addAndSelect(const std::shared_ptr<VantlePreset> &preset, const WantedName &wanted)
{
    const auto entry = std::make_shared<ListedPreset>(preset);
    entry->relation.wanted = wanted;
    insert(entry);
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
    if (saver)
        saver->recover(PresetsFailure::Operation::save, entry->name);
    const int row = index.rowOf(*entry);
    Q_EMIT q.rowAboutToBeRemoved(row);
    index.remove(row);
    Q_EMIT q.rowRemoved(row);
}

void PresetsManager::Private::moveEntry(const Entry &entry, const QString &name)
{
    if (saver)
        saver->recover(PresetsFailure::Operation::save, entry->name);
    const ListedPreset moved(entry->preset, name);
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

/// Lists a preset in place of another one, whose name it gets, with the file that it stands for.
PresetsManager::Private::Entry PresetsManager::Private::exchange(const Entry &entry,
                                                                 const std::shared_ptr<VantlePreset> &source,
                                                                 const std::shared_ptr<PresetFile> &file)
{
    source->setName(entry->name);
    const auto replacement = std::make_shared<ListedPreset>(source);
    replacement->relation.file = file;
    removeEntry(entry);
    insert(replacement);
    return replacement;
}

void PresetsManager::Private::setSelection(const std::shared_ptr<VantlePreset> &preset)
{
    selected = preset;
    Q_EMIT q.selectedPresetChanged(preset);
}

void PresetsManager::Private::save(const std::shared_ptr<VantlePreset> &preset,
                                   PresetSaver::Precedence precedence, const std::filesystem::path &like)
{
    const auto saved = preset; // the argument may be this manager's own selection
    if (!saver)
        return;
    if (nameEdit == saved)
        Q_EMIT q.nameEditMustEnd(saved);
    auto entry = index.find(saved.get());
    if (!entry)
        entry = std::make_shared<ListedPreset>(saved); // not listed: a file of its name alone
    const bool isRenamed =
        nameEdit != saved && saved->name() != entry->name && !index.isTaken(saved->name(), saved.get());
    if (isRenamed)
        moveEntry(entry, saved->name());
    if (!like.empty())
        entry->relation.like = like;
    saver->save(entry, PresetSaver::Mode::write, precedence);
    if (isRenamed)
        announceList();
    if (quitting)
        saver->finish();
}

void PresetsManager::Private::retry(const PresetsFailure &failure)
{
    switch (failure.operation) {
    case PresetsFailure::Operation::load:
        saver->reread(failure.name);
        break;
    case PresetsFailure::Operation::save:
        if (const auto entry = index.findNamed(failure.name))
            save(entry->preset, PresetSaver::Precedence::edits);
        break;
    case PresetsFailure::Operation::deletion:
        saver->removeFile(failure.name, nullptr);
        break;
    }
}

bool PresetsManager::Private::isListed(const Entry &entry) const
{
    return index.find(entry->preset.get()) == entry;
}

bool PresetsManager::Private::endNameEdit(const Entry &entry)
{
    if (nameEdit == entry->preset)
        Q_EMIT q.nameEditMustEnd(entry->preset);
    return isListed(entry) && !entry->relation.isUnderWay();
}

QString PresetsManager::Private::nextName(const Entry &entry) const
{
    const auto isTaken = [&](const QString &name) {
        return entry->relation.refusedNames.contains(name) || index.isTaken(name, entry->preset.get()) ||
               isInFolder(name);
    };
    const WantedName &wanted = entry->relation.wanted;
    return wanted.isOfCopy ? duplicateName(wanted.text, isTaken) : uniqueName(wanted.text, isTaken);
}

void PresetsManager::Private::renamePreset(const Entry &entry, const QString &name)
{
    entry->preset->setName(name);
    moveEntry(entry, name);
    announceList();
}

void PresetsManager::Private::removePreset(const Entry &entry)
{
    removeEntry(entry);
    announceList();
}

/// A file that was read while this store was about to delete it.
void PresetsManager::Private::fileDeleted(const QString &name)
{
    const auto entry = index.findFile(name);
    if (!entry || entry->relation.isUnderWay() || entry->relation.file->name() != name || isInFolder(name))
        return;
    removePreset(entry);
}

/// As far as has been reported, the changes of this process included.
bool PresetsManager::Private::isInFolder(const QString &name) const
{
    return watcher->hasItemAtPath(saver->pathOf(name));
}

void PresetsManager::Private::presetsLoaded(PresetIndex loaded)
{
    const bool isFirst = !std::exchange(isLoaded, true);
    if (isFirst)
        startError.reset(); // the shortage has ended
    if (isFirst && saver->hasBegun())
        loaded = withoutKnown(std::move(loaded));
    if (isFirst)
        saver->removeLeftovers();
    Q_EMIT q.rowsAboutToBeReset();
    if (index.presets().isEmpty())
        index = std::move(loaded);
    else
        index.merge(loaded.takeEntries());
    Q_EMIT q.rowsReset();
    announceList();
    if (isFirst)
        Q_EMIT q.didLoad();
}

/// What was loaded less the files that this store wrote or deleted before the folder had been read.
PresetIndex PresetsManager::Private::withoutKnown(PresetIndex loaded) const
{
    PresetIndex::Entries entries = loaded.takeEntries();
    std::erase_if(entries, [this](const Entry &entry) {
        const auto known = index.findFile(entry->name);
        return (known && known->relation.file->name() == entry->name) || !isInFolder(entry->name);
    });
    PresetIndex rest;
    rest.merge(std::move(entries));
    return rest;
}

void PresetsManager::Private::presetAdded(const Entry &added)
{
    const auto known = index.findFile(added->name);
    const KnownFile read = added->relation.file->get();
    if (known && known->relation.file->name() == added->name) {
        // It was away for a moment, or its removal was reported while a save was under way.
        presetUpdated(read, added->preset);
        return;
    }
    saver->recover(PresetsFailure::Operation::deletion, added->name); // others have something to say in it
    insert(added);
    announceList();
}

/// The listed preset that a report about a file of this name means.
PresetsManager::Private::Entry PresetsManager::Private::entryOfFile(const QString &name) const
{
    auto entry = index.findFile(name);
    if (entry && entry->name != name && isInFolder(entry->name))
        return nullptr; // that is the file of another spelling: the preset's own is there
    return entry;
}

void PresetsManager::Private::presetRemoved(const QString &name)
{
    saver->recover(PresetsFailure::Operation::deletion, name); // others have done it
    const auto entry = entryOfFile(name);
    // What the folder's inventory has was made again since: what becomes of that is reported.
    if (!entry || !saver->hear(entry) || isInFolder(name))
        return;
    removePreset(entry);
}

/// Whether what was read may be older than what this store has put there since; it is read again then.
bool PresetsManager::Private::isOutdated(const Entry &entry, const KnownFile &read)
{
    const KnownFile known = entry->relation.file->get();
    if (known.name != read.name || known.stamp == read.stamp || known.since < read.since)
        return false;
    saver->reread(read.name);
    return true;
}

void PresetsManager::Private::presetGone(const KnownFile &read)
{
    saver->recover(PresetsFailure::Operation::deletion, read.name);
    const auto entry = entryOfFile(read.name);
    if (!entry || !saver->hear(entry) || isOutdated(entry, read))
        return;
    removePreset(entry);
}

void PresetsManager::Private::readLater(const QString &name)
{
    constexpr std::chrono::seconds kGrace{3};
    if (toReadLater.contains(name))
        return;
    toReadLater.insert(name);
    QTimer::singleShot(kGrace, &queue, [this, name] {
        toReadLater.remove(name);
        saver->reread(name);
    });
}

void PresetsManager::Private::presetUpdated(const KnownFile &read,
                                            const std::shared_ptr<VantlePreset> &source)
{
    const auto entry = entryOfFile(read.name);
    if (!entry || !source || !saver->hear(entry) || isOutdated(entry, read))
        return;
    entry->relation.file->set(read);
    // A file that says what it said before (it was only touched) must not undo edits.
    if (read.documentHash && read.documentHash == entry->relation.documentHash)
        return;
    takeOver(entry, source, read);
    announceList();
}

void PresetsManager::Private::takeOver(const Entry &entry, const std::shared_ptr<VantlePreset> &source,
                                       const KnownFile &read)
{
    if (nameEdit == entry->preset)
        source->setName(entry->preset->name()); // what the user is typing stays
    if (updatePreset(*entry->preset, *source)) {
        entry->relation.documentHash = documentHash(*entry->preset);
        Q_EMIT q.presetUpdated(entry->preset);
    } else { // a file of another class
        const auto file = std::make_shared<PresetFile>();
        file->set(read);
        exchange(entry, source, file)->relation.documentHash = read.documentHash;
    }
}

} // namespace vantle
