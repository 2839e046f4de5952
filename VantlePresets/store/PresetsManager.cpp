// SPDX-License-Identifier: MIT
#include "VantlePresets/store/PresetsManager.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/core/ProgrammingFault.h"
#include "VantlePresets/document/DocumentReader.h"
#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/model/SettingsLists.h"
#include "VantlePresets/store/NameRules.h"
#include "VantlePresets/store/PresetsFolder.h"
#include "VantlePresets/store/PresetsManagerPrivate.h"
#include "watchfolder/VRXWatchFolder.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSet>
#include <QtCore/QThread>

#include <algorithm>

namespace vantle {

using namespace Qt::StringLiterals;

namespace {

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

void requirePreset(const std::shared_ptr<VantlePreset> &preset, const char *fault)
{
    if (!preset)
        programmingFault(fault);
}

} // namespace

PresetsManager::PresetsManager() : PresetsManager(machineDataDirectories) {}

PresetsManager::PresetsManager(const DirectoryLookup &lookup) : d(std::make_unique<Private>(*this))
{
    const auto *const application = QCoreApplication::instance();
    if (application && application->thread() != QThread::currentThread())
        programmingFault("PresetsManager is made off the main thread");
    qRegisterMetaType<PresetsFailure>();
    d->start(lookup());
    if (application) {
        connect(application, &QCoreApplication::aboutToQuit, this, [this] {
            // What others save from now on is waited for in save(), until the last of them has been told: the
            // application deletes right then what is to be deleted later, and may run again after that.
            d->quitting = new QObject(this);
            d->quitting->deleteLater();
            if (d->saver)
                d->saver->finish();
        });
    }
}

PresetsManager::~PresetsManager()
{
    requireMainThread(*this);
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

std::optional<QString> PresetsManager::startError() const
{
    requireMainThread(*this);
    return d->startError;
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
    PresetIndex::sort(entries);
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
    const QString wanted = displayName(type) + " Preset"_L1;
    const QString name = uniqueName(wanted, [this](const QString &n) { return d->index.isTaken(n); });
    return d->addAndSelect(makePreset(type, name), {.text = wanted});
}

std::shared_ptr<VantlePreset> PresetsManager::duplicate(const std::shared_ptr<VantlePreset> &preset)
{
    requireMainThread(*this);
    requirePreset(preset, "duplicate of no preset");
    const WantedName wanted{.text = listedName(preset), .isOfCopy = true};
    const QString name = duplicateName(wanted.text, [this](const QString &n) { return d->index.isTaken(n); });
    const auto copy = makePreset(preset->type(), name);
    if (const auto renditions = copied(preset->videoSettings()))
        copy->setVideoSettings(*renditions);
    copyAudioSettings(*preset, copy);
    return d->addAndSelect(copy, wanted);
}

bool PresetsManager::rename(const std::shared_ptr<VantlePreset> &preset, const QString &from,
                            const QString &to)
{
    requireMainThread(*this);
    requirePreset(preset, "rename of no preset");
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
        entry->relation.wanted = {.text = newName};
        d->moveEntry(entry, newName);
        if (d->saver)
            d->saver->save(entry, PresetSaver::Mode::rename);
    }
    d->announceList();
    if (renamed == d->selected) {
        setSelectedPreset(nullptr);
        setSelectedPreset(renamed);
    }
    return true;
}

std::shared_ptr<VantlePreset> PresetsManager::replace(const std::shared_ptr<VantlePreset> &preset,
                                                      const std::shared_ptr<VantlePreset> &source)
{
    requireMainThread(*this);
    requirePreset(source, "replacement by no preset");
    auto entry = d->index.find(preset.get());
    if (!entry)
        return nullptr;
    if (!updatePreset(*entry->preset, *source))
        entry = d->exchange(entry, source, entry->relation.file);
    d->announceList();
    d->save(entry->preset, PresetSaver::Precedence::edits);
    return entry->preset;
}

void PresetsManager::remove(const std::shared_ptr<VantlePreset> &preset)
{
    requireMainThread(*this);
    const auto entry = d->index.find(preset.get());
    if (!entry)
        return;
    if (d->saver)
        d->saver->remove(entry);
    d->removeEntry(entry);
    d->announceList();
}

void PresetsManager::save(const std::shared_ptr<VantlePreset> &preset)
{
    requireMainThread(*this);
    requirePreset(preset, "save of no preset");
    d->save(preset, PresetSaver::Precedence::edits);
}

void PresetsManager::saveUnlessChanged(const std::shared_ptr<VantlePreset> &preset)
{
    requireMainThread(*this);
    requirePreset(preset, "save of no preset");
    d->save(preset, PresetSaver::Precedence::file);
}

void PresetsManager::saveLike(const std::shared_ptr<VantlePreset> &preset, const QString &path)
{
    requireMainThread(*this);
    requirePreset(preset, "save of no preset");
    d->save(preset, PresetSaver::Precedence::edits, fileSystemPath(path));
}

bool PresetsManager::replaceBrokenFile(const std::shared_ptr<VantlePreset> &preset)
{
    requireMainThread(*this);
    const auto entry = d->index.find(preset.get());
    return entry && d->saver && d->saver->takeBrokenFile(entry);
}

bool PresetsManager::hasPendingSaves() const
{
    requireMainThread(*this);
    return d->saver && d->saver->isBusy();
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
    if (d->saver)
        d->saver->removeFile(name, d->index.findFile(name));
}

bool PresetsManager::hasUnsavedEdits(const std::shared_ptr<VantlePreset> &preset) const
{
    requireMainThread(*this);
    const auto entry = d->index.find(preset.get());
    if (!entry || !entry->relation.documentHash)
        return true;
    if (entry->relation.isRenameOwed() && !entry->relation.isUnderWay()) // it has failed
        return true;
    const auto hash = documentHash(*preset);
    return hash && hash != entry->relation.documentHash;
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
    requirePreset(preset, "name of no preset");
    const auto entry = d->index.find(preset.get());
    return entry ? entry->name : preset->name();
}

int PresetsManager::rowOf(const std::shared_ptr<VantlePreset> &preset) const
{
    requireMainThread(*this);
    const auto entry = d->index.find(preset.get());
    return entry ? d->index.rowOf(*entry) : -1;
}

QList<PresetsFailure> PresetsManager::failures() const
{
    requireMainThread(*this);
    return d->saver ? d->saver->failures() : QList<PresetsFailure>();
}

void PresetsManager::retry(const PresetsFailure &failure)
{
    requireMainThread(*this);
    if (d->saver && d->saver->failures().contains(failure))
        d->retry(failure);
}

void PresetsManager::waitForFileTasks()
{
    requireMainThread(*this);
    if (d->saver)
        d->saver->waitForFiles();
}

} // namespace vantle
