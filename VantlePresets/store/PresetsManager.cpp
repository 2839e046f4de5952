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
#include <QtCore/QThread>

#include <algorithm>

namespace vantle {

using namespace Qt::StringLiterals;

class PresetsManager::Private final : public FolderReconciler::Receiver
{
public:
    explicit Private(PresetsManager &manager) : q(manager) {}

    void start(const QStringList &dataDirectories);
    void stop();

    std::shared_ptr<VantlePreset> addAndSelect(const std::shared_ptr<VantlePreset> &preset);
    void insert(const std::shared_ptr<ListedPreset> &entry);
    void removeEntry(const ListedPreset &entry);
    void moveEntry(ListedPreset &entry, const QString &name);
    void setSelection(const std::shared_ptr<VantlePreset> &preset);
    void endEditBeforeSave(const std::shared_ptr<VantlePreset> &preset);
    PresetFiles::Done beginSave(const std::shared_ptr<VantlePreset> &preset, const QByteArray &document);
    void finishSave(ListedPreset &entry, PresetFiles::Outcome outcome, bool hadFile);
    void takeOver(ListedPreset &entry, const std::shared_ptr<VantlePreset> &source);
    PresetIndex withoutListed(PresetIndex loaded);
    QUrl urlOf(const QString &name) const { return QUrl::fromLocalFile(folder + u'/' + name + ".json"_L1); }
    void announceList() { Q_EMIT q.presetsChanged(index.presets()); }

    void presetsLoaded(PresetIndex loaded) override;
    void presetAdded(const std::shared_ptr<ListedPreset> &added) override;
    void presetRemoved(const QString &name) override;
    void presetUpdated(const QString &name, const std::shared_ptr<VantlePreset> &source) override;

    PresetsManager &q;
    PresetIndex index;
    std::shared_ptr<VantlePreset> selected;
    std::shared_ptr<VantlePreset> nameEdit;
    QString folder; // "" without one
    bool isLoaded = false;
    bool isQuitting = false;

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
    for (const auto &preset : presets) {
        const auto *const known = d->index.find(preset.get());
        entries.push_back(known ? std::make_shared<ListedPreset>(*known)
                                : std::make_shared<ListedPreset>(preset));
        entries.back()->hasFile = true; // what the host lists, it wants to be written
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
    if (wanted)
        save(wanted);
}

std::shared_ptr<VantlePreset> PresetsManager::presetWithName(const QString &name) const
{
    requireMainThread(*this);
    const auto *const entry = d->index.findNamed(name);
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
    if (newName.isEmpty())
        return false;
    if (canonicalName(newName) == canonicalName(oldName)) {
        if (renamed->name() != oldName)
            renamed->setName(oldName);
        return true;
    }
    if (d->index.isTaken(newName, renamed.get()))
        return false;

    renamed->setName(newName);
    if (auto *const entry = d->index.find(renamed.get()))
        d->moveEntry(*entry, newName);
    const auto document = documentOf(*renamed);
    if (d->files && document) {
        if (auto *const entry = d->index.find(renamed.get()))
            entry->hasFile = false;
        d->files->rename(oldName, newName, *document, d->beginSave(renamed, *document));
    }
    d->announceList();
    if (d->selected == renamed) {
        setSelectedPreset(nullptr);
        setSelectedPreset(renamed);
    }
    return true;
}

void PresetsManager::remove(const std::shared_ptr<VantlePreset> &preset)
{
    requireMainThread(*this);
    const auto *const entry = d->index.find(preset.get());
    if (!entry)
        return;
    deletePresetFile(entry->name);
    d->removeEntry(*entry);
    d->announceList();
}

void PresetsManager::save(const std::shared_ptr<VantlePreset> &preset)
{
    requireMainThread(*this);
    if (!d->files)
        return;
    const auto saved = preset; // the argument may be this manager's own selection
    d->endEditBeforeSave(saved);
    const auto document = documentOf(*saved);
    if (!document)
        return;

    QString name = saved->name();
    auto rule = PresetFiles::Rule::always;
    if (auto *const entry = d->index.find(saved.get())) {
        if (d->nameEdit == saved)
            name = entry->name; // nobody ended the edit: the file keeps its name
        else if (name != entry->name)
            d->moveEntry(*entry, name);
        if (!entry->hasFile)
            rule = PresetFiles::Rule::unlessPresent;
        else if (entry->documentHash == documentHash(*document))
            rule = PresetFiles::Rule::unlessChanged;
    }
    d->files->write(name, *document, rule, d->beginSave(saved, *document));
    if (d->isQuitting)
        waitForFileTasks();
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
    const auto *const entry = d->index.find(preset.get());
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
    const auto *const entry = d->index.find(preset.get());
    return entry ? entry->name : preset->name();
}

int PresetsManager::rowOf(const std::shared_ptr<VantlePreset> &preset) const
{
    requireMainThread(*this);
    const auto *const entry = d->index.find(preset.get());
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
        [reconciler = reconciler](const QString &name) { return reconciler->isUnreadable(name); });
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

void PresetsManager::Private::insert(const std::shared_ptr<ListedPreset> &entry)
{
    const int row = index.insertionRow(*entry);
    Q_EMIT q.rowAboutToBeInserted(row);
    index.insert(row, entry);
    Q_EMIT q.rowInserted(row);
}

void PresetsManager::Private::removeEntry(const ListedPreset &entry)
{
    const auto preset = entry.preset;
    if (nameEdit == preset)
        nameEdit.reset();
    if (selected == preset)
        setSelection(nullptr);
    const auto *const present = index.find(preset.get()); // observers of the selection ran
    if (!present)
        return;
    const int row = index.rowOf(*present);
    Q_EMIT q.rowAboutToBeRemoved(row);
    index.remove(row);
    Q_EMIT q.rowRemoved(row);
}

void PresetsManager::Private::moveEntry(ListedPreset &entry, const QString &name)
{
    ListedPreset moved = entry;
    moved.setName(name);
    const int from = index.rowOf(entry);
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

void PresetsManager::Private::endEditBeforeSave(const std::shared_ptr<VantlePreset> &preset)
{
    if (nameEdit == preset)
        Q_EMIT q.nameEditMustEnd(preset);
}

/// Notes that a save of this document was started, and makes what takes its outcome.
PresetFiles::Done PresetsManager::Private::beginSave(const std::shared_ptr<VantlePreset> &preset,
                                                     const QByteArray &document)
{
    bool hadFile = true;
    if (auto *const entry = index.find(preset.get())) {
        hadFile = std::exchange(entry->hasFile, true);
        entry->documentHash = documentHash(document);
        ++entry->savesInFlight;
    }
    // Weak: a preset must not be destroyed on the file thread.
    return [this, saved = std::weak_ptr(preset), hadFile](PresetFiles::Outcome outcome) {
        queue.post([this, saved, hadFile, outcome] {
            const auto preset = saved.lock();
            if (auto *const entry = index.find(preset.get()))
                finishSave(*entry, outcome, hadFile);
        });
    };
}

void PresetsManager::Private::finishSave(ListedPreset &entry, PresetFiles::Outcome outcome, bool hadFile)
{
    --entry.savesInFlight;
    const bool wasRemoved = std::exchange(entry.wasRemovedMeanwhile, false);
    const bool wasChanged = std::exchange(entry.wasChangedMeanwhile, false);
    if (outcome == PresetFiles::Outcome::written) {
        entry.awaitsForeignFile = false;
        if (wasChanged) // before or after the save? the file tells
            files->start([reconciler = reconciler, url = urlOf(entry.name)] { reconciler->reread(url); });
        return;
    }
    entry.hasFile = hadFile;
    if (outcome == PresetFiles::Outcome::failed)
        entry.documentHash.reset(); // not on disk: the next save is one with edits
    else
        entry.awaitsForeignFile = !hadFile;
    if (wasRemoved)
        presetRemoved(entry.name);
    else if (wasChanged)
        files->start([reconciler = reconciler, url = urlOf(entry.name)] { reconciler->reread(url); });
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

/// What was loaded less the files of presets that were added before the folder had been read.
PresetIndex PresetsManager::Private::withoutListed(PresetIndex loaded)
{
    PresetIndex::Entries entries = loaded.takeEntries();
    std::erase_if(entries, [this](const auto &entry) {
        auto *const known = index.findNamed(entry->name);
        if (known && known->awaitsForeignFile)
            takeOver(*known, entry->preset);
        return known != nullptr;
    });
    PresetIndex rest;
    rest.merge(std::move(entries));
    return rest;
}

void PresetsManager::Private::presetAdded(const std::shared_ptr<ListedPreset> &added)
{
    auto *const entry = index.findNamed(added->name);
    if (entry && entry->awaitsForeignFile)
        takeOver(*entry, added->preset);
    else
        insert(added);
    announceList();
}

void PresetsManager::Private::presetRemoved(const QString &name)
{
    auto *const entry = index.findNamed(name);
    if (!entry)
        return;
    if (entry->savesInFlight > 0) {
        entry->wasRemovedMeanwhile = true;
        return;
    }
    removeEntry(*entry);
    announceList();
}

void PresetsManager::Private::presetUpdated(const QString &name, const std::shared_ptr<VantlePreset> &source)
{
    auto *const entry = index.findNamed(name);
    if (!entry)
        return;
    if (entry->savesInFlight > 0) {
        entry->wasChangedMeanwhile = true;
        return;
    }
    // A file that says what it said before (it was only touched) must not undo edits.
    const auto document = documentOf(*source);
    if (document && entry->documentHash == documentHash(*document))
        return;
    takeOver(*entry, source);
    announceList();
}

/// Makes a listed preset what a file of another process says; a file of another class gets a new object.
void PresetsManager::Private::takeOver(ListedPreset &entry, const std::shared_ptr<VantlePreset> &source)
{
    entry.hasFile = true;
    entry.awaitsForeignFile = false;
    const auto preset = entry.preset;
    if (nameEdit == preset)
        source->setName(preset->name()); // what the user is typing stays
    if (updatePreset(*preset, *source)) {
        if (auto *const updated = index.find(preset.get())) {
            const auto document = documentOf(*preset);
            updated->documentHash = document ? std::optional(documentHash(*document)) : std::nullopt;
        }
        Q_EMIT q.presetUpdated(preset);
        return;
    }
    source->setName(entry.name);
    const auto replacement = std::make_shared<ListedPreset>(source);
    replacement->hasFile = true;
    if (const auto document = documentOf(*source))
        replacement->documentHash = documentHash(*document);
    removeEntry(entry);
    insert(replacement);
}

} // namespace vantle
