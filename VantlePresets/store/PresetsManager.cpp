// SPDX-License-Identifier: MIT
#include "VantlePresets/store/PresetsManager.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/core/ProgrammingFault.h"
#include "VantlePresets/document/DocumentReader.h"
#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/model/SettingsLists.h"
#include "VantlePresets/store/FolderReconciler.h"
#include "VantlePresets/store/MainThreadQueue.h"
#include "VantlePresets/store/NameRules.h"
#include "VantlePresets/store/PresetFiles.h"
#include "VantlePresets/store/PresetIndex.h"
#include "VantlePresets/store/PresetsFolder.h"
#include "watchfolder/VRXWatchFolder.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSet>
#include <QtCore/QThread>

#include <algorithm>

namespace vantle {

using namespace Qt::StringLiterals;

class PresetsManager::Private final : public FolderReconciler::Receiver
{
public:
    using Entry = std::shared_ptr<ListedPreset>;

    explicit Private(PresetsManager &manager) : q(manager) {}

    void start(const QStringList &dataDirectories);
    void stop();

    std::shared_ptr<VantlePreset> addAndSelect(const std::shared_ptr<VantlePreset> &preset);
    void insert(const Entry &entry);
    void removeEntry(const Entry &entry);
    void moveEntry(const Entry &entry, const QString &name);
    void setSelection(const std::shared_ptr<VantlePreset> &preset);
    void announceList() { Q_EMIT q.presetsChanged(index.presets()); }

    enum class Way { write, rename };
    void startSave(const Entry &entry, Way way);
    void finishSave(const Entry &entry, PresetFiles::Outcome outcome);
    void giveFreeName(const Entry &entry);
    void lookAgain(const ListedPreset &entry);

    void presetsLoaded(PresetIndex loaded) override;
    void presetAdded(const Entry &added) override;
    void presetRemoved(const QString &name) override;
    void presetUpdated(const QString &name, const std::shared_ptr<VantlePreset> &source,
                       const FileStamp &stamp) override;
    PresetIndex withoutListed(PresetIndex loaded);
    void noteDocument(ListedPreset &entry);

    PresetsManager &q;
    PresetIndex index;
    std::shared_ptr<VantlePreset> selected;
    std::shared_ptr<VantlePreset> nameEdit;
    QString folder; // "" without one
    bool isLoaded = false;
    bool isQuitting = false;
    int savesInFlight = 0;

    MainThreadQueue queue;
    std::shared_ptr<FolderReconciler> reconciler;
    std::shared_ptr<VRXWatchFolder> watcher;
    std::unique_ptr<PresetFiles> files;
};

namespace {

/// The document, or nothing for a preset that has none (a frame rate that is not finite).
std::optional<QByteArray> documentOf(const VantlePreset &preset)
{
    try {
        return preset.encoded(document::Format::compact);
    } catch (const EncodingError &) {
        return std::nullopt;
    }
}

/// Copies of settings objects by way of their JSON; nothing when they can't be written or read back.
template <class Settings>
std::optional<QList<std::shared_ptr<Settings>>> copied(const QList<std::shared_ptr<Settings>> &list)
{
    try {
        const QByteArray text =
            document::encode(document::Format::compact, [&](document::DocumentWriter &writer) {
                writer.beginObject();
                encodeList(writer, "list", list);
                writer.endObject();
            });
        const document::Document json(text);
        return decodeList<Settings>(json.root(), "list");
    } catch (const std::exception &) {
        return std::nullopt;
    }
}

void copyAudioSettings(const VantlePreset &source, const std::shared_ptr<VantlePreset> &copy)
{
    const auto tracks = copied(source.audioSettings());
    if (!tracks)
        return;
    for (const auto &track : *tracks)
        track->setDelegate(copy);
    copy->setAudioSettings(*tracks);
    // The first flagged track, where reading a file takes the last.
    const auto flagged =
        std::find_if(tracks->begin(), tracks->end(), [](const auto &track) { return track->isDefault(); });
    copy->setDefaultAudioSettings(flagged == tracks->end() ? nullptr : *flagged);
}

void requireMainThread(const QObject &manager)
{
    if (QThread::currentThread() != manager.thread())
        programmingFault("PresetsManager is used off the main thread");
}

} // namespace

PresetsManager::PresetsManager() : PresetsManager(machineDataDirectories) {}

PresetsManager::PresetsManager(const DirectoryLookup &lookup) : d(std::make_unique<Private>(*this))
{
    const auto *const application = QCoreApplication::instance();
    if (application && application->thread() != QThread::currentThread())
        programmingFault("PresetsManager is made off the main thread");
    d->start(lookup());
    if (application) {
        connect(application, &QCoreApplication::aboutToQuit, this, [this] {
            d->isQuitting = true; // what others save from now on is waited for in save()
            waitForFileTasks();
        });
    }
}

PresetsManager::~PresetsManager()
{
    d->stop();
}

std::optional<QUrl> PresetsManager::presetsFolderURL() const
{
    requireMainThread(*this);
    return d->folder.isEmpty() ? std::nullopt : std::optional(QUrl::fromLocalFile(d->folder));
}

std::shared_ptr<VRXWatchFolder> PresetsManager::watchFolder() const
{
    requireMainThread(*this);
    return d->watcher;
}

bool PresetsManager::isLoaded() const
{
    requireMainThread(*this);
    return d->isLoaded;
}

const PresetsList &PresetsManager::presets() const
{
    requireMainThread(*this);
    return d->index.presets();
}

void PresetsManager::setPresets(const PresetsList &presets)
{
    requireMainThread(*this);
    PresetIndex::Entries entries;
    QSet<const VantlePreset *> listed;
    for (const auto &preset : presets) {
        if (!preset || listed.contains(preset.get()))
            continue;
        listed.insert(preset.get());
        const auto known = d->index.find(preset.get());
        entries.push_back(known ? known : std::make_shared<ListedPreset>(preset));
    }
    Q_EMIT rowsAboutToBeReset();
    static_cast<void>(d->index.takeEntries());
    d->index.merge(std::move(entries));
    Q_EMIT rowsReset();
    if (d->nameEdit && !d->index.find(d->nameEdit.get()))
        d->nameEdit.reset();
    if (d->selected && !d->index.find(d->selected.get()))
        d->setSelection(nullptr);
    d->announceList();
}

const std::shared_ptr<VantlePreset> &PresetsManager::selectedPreset() const
{
    requireMainThread(*this);
    return d->selected;
}

void PresetsManager::setSelectedPreset(const std::shared_ptr<VantlePreset> &preset)
{
    requireMainThread(*this);
    const auto wanted = preset; // the argument may be this manager's own selection
    if (wanted && !d->index.find(wanted.get()))
        return;
    d->setSelection(wanted);
    if (wanted && d->index.find(wanted.get())) // an observer may have removed it
        save(wanted);
}

std::shared_ptr<VantlePreset> PresetsManager::presetWithName(const QString &name) const
{
    requireMainThread(*this);
    const auto entry = d->index.findNamed(name);
    return entry ? entry->preset : nullptr;
}

PresetsList PresetsManager::presetsWithTypeName(const QString &typeName) const
{
    requireMainThread(*this);
    const auto type = streamingTypes().fromText(typeName);
    PresetsList found;
    for (const auto &preset : d->index.presets()) {
        if (preset->type() == type)
            found.append(preset);
    }
    return found;
}

std::shared_ptr<VantlePreset> PresetsManager::addNewPreset(StreamingType type)
{
    requireMainThread(*this);
    const QString name = uniqueName(displayName(type) + " Preset"_L1,
                                    [this](const QString &n) { return d->index.isTaken(n); });
    return d->addAndSelect(makePreset(type, name));
}

std::shared_ptr<VantlePreset> PresetsManager::duplicate(const std::shared_ptr<VantlePreset> &preset)
{
    requireMainThread(*this);
    const QString name =
        duplicateName(listedName(preset), [this](const QString &n) { return d->index.isTaken(n); });
    const auto copy = makePreset(preset->type(), name);
    if (const auto renditions = copied(preset->videoSettings()))
        copy->setVideoSettings(*renditions);
    copyAudioSettings(*preset, copy);
    return d->addAndSelect(copy);
}

bool PresetsManager::rename(const std::shared_ptr<VantlePreset> &preset, const QString &from,
                            const QString &to)
{
    requireMainThread(*this);
    if (d->nameEdit == preset)
        d->nameEdit.reset();
    const auto renamed = preset; // the argument may be this manager's own selection
    const QString oldName = from;
    const QString newName = trimmedName(to);
    const bool isRefused = newName.isEmpty() || d->index.isTaken(newName, renamed.get());
    if (isRefused || canonicalName(newName) == canonicalName(oldName)) {
        if (renamed->name() != oldName)
            renamed->setName(oldName); // what was typed meanwhile
        return !isRefused;
    }

    renamed->setName(newName);
    if (const auto entry = d->index.find(renamed.get())) {
        d->moveEntry(entry, newName);
        d->startSave(entry, Private::Way::rename);
    }
    d->announceList();
    if (renamed == d->selected) {
        setSelectedPreset(nullptr);
        setSelectedPreset(renamed);
    }
    return true;
}

void PresetsManager::remove(const std::shared_ptr<VantlePreset> &preset)
{
    requireMainThread(*this);
    const auto entry = d->index.find(preset.get());
    if (!entry)
        return;
    if (d->files)
        d->files->remove(entry->file);
    d->removeEntry(entry);
    d->announceList();
}

void PresetsManager::save(const std::shared_ptr<VantlePreset> &preset)
{
    requireMainThread(*this);
    const auto saved = preset; // the argument may be this manager's own selection
    if (!saved)
        programmingFault("save of no preset");
    if (!d->files)
        return;
    if (d->nameEdit == saved)
        Q_EMIT nameEditMustEnd(saved);
    auto entry = d->index.find(saved.get());
    if (!entry)
        entry = std::make_shared<ListedPreset>(saved); // not listed: a file of its name alone
    else if (d->nameEdit != saved && saved->name() != entry->name &&
             !d->index.isTaken(saved->name(), saved.get()))
        d->moveEntry(entry, saved->name());
    d->startSave(entry, Private::Way::write);
    if (d->isQuitting)
        waitForFileTasks();
}

bool PresetsManager::hasPendingSaves() const
{
    requireMainThread(*this);
    return d->savesInFlight > 0;
}

void PresetsManager::saveSelectedPreset()
{
    requireMainThread(*this);
    if (d->selected)
        save(d->selected);
}

void PresetsManager::deletePresetFile(const QString &name)
{
    requireMainThread(*this);
    if (d->files)
        d->files->remove(name);
}

bool PresetsManager::hasUnsavedEdits(const std::shared_ptr<VantlePreset> &preset) const
{
    requireMainThread(*this);
    const auto entry = d->index.find(preset.get());
    if (!entry || !entry->documentHash)
        return true;
    const auto document = documentOf(*preset);
    return document && documentHash(*document) != entry->documentHash;
}

void PresetsManager::beginNameEdit(const std::shared_ptr<VantlePreset> &preset)
{
    requireMainThread(*this);
    if (d->index.find(preset.get()))
        d->nameEdit = preset;
}

void PresetsManager::endNameEdit()
{
    requireMainThread(*this);
    d->nameEdit.reset();
}

QString PresetsManager::listedName(const std::shared_ptr<VantlePreset> &preset) const
{
    requireMainThread(*this);
    const auto entry = d->index.find(preset.get());
    return entry ? entry->name : preset->name();
}

int PresetsManager::rowOf(const std::shared_ptr<VantlePreset> &preset) const
{
    requireMainThread(*this);
    const auto entry = d->index.find(preset.get());
    return entry ? d->index.rowOf(*entry) : -1;
}

void PresetsManager::waitForFileTasks()
{
    requireMainThread(*this);
    if (d->files)
        d->files->wait();
}

void PresetsManager::Private::start(const QStringList &dataDirectories)
{
    static constexpr auto kStartError = "Error to create directory or start watching: "_L1;
    if (dataDirectories.isEmpty())
        return;
    const QString path = presetsFolderPath(dataDirectories.first());
    try {
        ensureFolder(path);
    } catch (const std::exception &error) {
        logLine(kStartError + QString::fromUtf8(error.what()));
        return;
    }
    folder = path;
    reconciler = std::make_shared<FolderReconciler>(queue, *this);
    watcher = std::make_shared<VRXWatchFolder>(folder, reconciler);
    files = std::make_unique<PresetFiles>(
        folder.toStdString(), watcher,
        [reconciler = reconciler](const std::string &path) { reconciler->add(path); });
    files->removeLeftovers();
    WatchFolderError error;
    if (!watcher->startWatching(&error))
        logLine(kStartError + error.description);
}

void PresetsManager::Private::stop()
{
    if (!watcher)
        return;
    files->wait(); // first, while the watcher still knows which changes are the store's own
    reconciler->cancel();
    watcher->stopWatching();
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
    const int row = index.rowOf(*entry);
    Q_EMIT q.rowAboutToBeRemoved(row);
    index.remove(row);
    Q_EMIT q.rowRemoved(row);
}

void PresetsManager::Private::moveEntry(const Entry &entry, const QString &name)
{
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
    const auto document = documentOf(*entry->preset);
    if (!files || !document)
        return;
    const std::size_t hash = documentHash(*document);
    const PresetFiles::Save save{entry->file, entry->name, *document, entry->documentHash != hash};
    entry->documentHash = hash;
    ++entry->savesInFlight;
    ++savesInFlight;
    // Weak: a preset must not be destroyed on the file thread.
    const auto done = [this, weak = std::weak_ptr(entry)](PresetFiles::Outcome outcome) {
        queue.post([this, weak, outcome] {
            --savesInFlight;
            if (const auto saved = weak.lock())
                finishSave(saved, outcome);
        });
    };
    if (way == Way::rename)
        files->rename(save, done);
    else
        files->write(save, done);
}

void PresetsManager::Private::finishSave(const Entry &entry, PresetFiles::Outcome outcome)
{
    --entry->savesInFlight;
    if (outcome == PresetFiles::Outcome::written)
        entry->refusedNames.clear();
    if (outcome == PresetFiles::Outcome::failed || outcome == PresetFiles::Outcome::refused)
        entry->documentHash.reset(); // not on disk: the next save is one with edits
    if (entry->savesInFlight > 0 || index.find(entry->preset.get()) != entry)
        return;
    if (outcome == PresetFiles::Outcome::refused)
        giveFreeName(entry);
    else if (std::exchange(entry->wasChangedMeanwhile, false) || outcome == PresetFiles::Outcome::outdated)
        lookAgain(*entry);
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

/// Lets the file itself say what has become of it.
void PresetsManager::Private::lookAgain(const ListedPreset &entry)
{
    const QString path = folder + u'/' + entry.name + ".json"_L1;
    files->start([reconciler = reconciler, path = path.toStdString()] { reconciler->reread(path); });
}

void PresetsManager::Private::presetsLoaded(PresetIndex loaded)
{
    const bool isFirst = !std::exchange(isLoaded, true);
    if (isFirst && !index.presets().isEmpty())
        loaded = withoutListed(std::move(loaded));
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

/// What was loaded less the files that this store wrote before the folder had been read.
PresetIndex PresetsManager::Private::withoutListed(PresetIndex loaded)
{
    PresetIndex::Entries entries = loaded.takeEntries();
    std::erase_if(entries, [this](const Entry &entry) {
        const auto known = index.findNamed(entry->name);
        return known && known->file->name() == entry->name;
    });
    PresetIndex rest;
    rest.merge(std::move(entries));
    return rest;
}

void PresetsManager::Private::presetAdded(const Entry &added)
{
    const auto known = index.findNamed(added->name);
    if (known && known->savesInFlight > 0 && known->file->name() == added->name) {
        known->wasChangedMeanwhile = true; // removed and made again
        return;
    }
    insert(added);
    announceList();
}

void PresetsManager::Private::presetRemoved(const QString &name)
{
    const auto entry = index.findNamed(name);
    if (!entry)
        return;
    if (entry->savesInFlight > 0) {
        entry->wasChangedMeanwhile = true;
        return;
    }
    removeEntry(entry);
    announceList();
}

void PresetsManager::Private::presetUpdated(const QString &name, const std::shared_ptr<VantlePreset> &source,
                                            const FileStamp &stamp)
{
    const auto entry = index.findNamed(name);
    if (!entry || !source)
        return;
    if (entry->savesInFlight > 0) {
        entry->wasChangedMeanwhile = true;
        return;
    }
    entry->file->set(name, stamp);
    // A file that says what it said before (it was only touched) must not undo edits.
    const auto document = documentOf(*source);
    if (document && entry->documentHash == documentHash(*document))
        return;
    if (nameEdit == entry->preset)
        source->setName(entry->preset->name()); // what the user is typing stays
    if (updatePreset(*entry->preset, *source)) {
        noteDocument(*entry);
        Q_EMIT q.presetUpdated(entry->preset);
    } else { // a file of another class
        source->setName(entry->name);
        const auto replacement = std::make_shared<ListedPreset>(source);
        replacement->file->set(name, stamp);
        noteDocument(*replacement);
        removeEntry(entry);
        insert(replacement);
    }
    announceList();
}

void PresetsManager::Private::noteDocument(ListedPreset &entry)
{
    const auto document = documentOf(*entry.preset);
    entry.documentHash = document ? std::optional(documentHash(*document)) : std::nullopt;
}

} // namespace vantle
