// SPDX-License-Identifier: MIT
#include "VantlePresets/store/PresetSaver.h"

#include "VantlePresets/document/DocumentError.h"
#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/store/FolderReconciler.h"
#include "watchfolder/VRXWatchFolder.h"

namespace vantle {

using namespace Qt::StringLiterals;
using Operation = PresetsFailure::Operation;

std::optional<std::size_t> documentHash(const VantlePreset &preset)
{
    try {
        return preset.documentHash();
    } catch (const EncodingError &) {
        return std::nullopt;
    }
}

PresetSaver::PresetSaver(List &list, MainThreadQueue &queue, const QString &folder,
                         std::shared_ptr<VRXWatchFolder> watcher,
                         std::shared_ptr<FolderReconciler> reconciler)
    : m_list(list), m_queue(queue), m_folder(folder), m_watcher(std::move(watcher)),
      m_reconciler(std::move(reconciler)),
      m_files(folder.toStdString(), m_watcher, [this](const PresetFiles::Deletion &deletion) {
          m_queue.post([this, deletion] { deletionEnded(deletion); });
      })
{
}

QString PresetSaver::pathOf(const QString &name) const
{
    return m_folder + u'/' + name + ".json"_L1;
}

void PresetSaver::save(const Entry &entry, Mode mode, Precedence precedence)
{
    FileRelation &relation = entry->relation;
    const auto hash = documentHash(*entry->preset);
    if (!hash)
        return;
    const bool hasEdits = relation.documentHash != hash;
    relation.documentHash = hash;
    relation.begin(mode == Mode::rename);
    ++m_savesUnderWay;
    m_hasBegun = true;
    // Weak: a preset must not be destroyed on the file thread.
    const auto done = [this, weak = std::weak_ptr(entry), name = entry->name,
                       hasEdits](const PresetFiles::Result &result) {
        m_queue.post([this, weak, name, hasEdits, result] {
            --m_savesUnderWay;
            if (const auto saved = weak.lock())
                saveEnded(saved, name, hasEdits, result);
        });
    };
    m_files.save({.file = relation.file,
                  .name = entry->name,
                  .document = entry->preset->encoded(document::Format::compact),
                  .documentHash = *hash,
                  .precedence = hasEdits ? precedence : Precedence::unedited,
                  .takesOldNameAway = relation.isRenameOwed(),
                  .like = relation.like},
                 done);
}

bool PresetSaver::takeBrokenFile(const Entry &entry)
{
    KnownFile file{
        .name = entry->name, .stamp = {}, .documentHash = {}, .since = std::chrono::steady_clock::now()};
    try {
        const QByteArray content = readFile(fileSystemPath(pathOf(entry->name)), &file.stamp);
        try {
            static_cast<void>(decodePreset(content));
            return false; // somebody has made it good meanwhile
        } catch (const DecodingError &) {
            entry->relation.file->set(file);
            return true;
        }
    } catch (const std::system_error &) {
        return false; // not there, or not for this user to look at
    }
}

void PresetSaver::saveEnded(const Entry &entry, const QString &name, bool hadEdits,
                            const PresetFiles::Result &result)
{
    using Outcome = PresetFiles::Outcome;
    const SaveDuty duty = entry->relation.end(result.outcome);
    if (result.outcome != Outcome::written && hadEdits)
        entry->relation.documentHash.reset(); // the next save is one with edits
    if (result.outcome == Outcome::refused)
        entry->relation.refusedNames.append(name);
    if (result.outcome == Outcome::written) {
        entry->relation.refusedNames.clear();
        entry->relation.like.clear();
        recover(Operation::load, name); // of a file that it has replaced
    }
    const bool hasFailed = result.outcome == Outcome::failed && entry->name == name; // else another will tell
    if (hasFailed && (hadEdits || entry->relation.isRenameOwed()))                   // else nothing is lost
        fail({Operation::save, name, pathOf(name), result.reason});
    else if (!hasFailed)
        recover(Operation::save, name);
    if (!m_list.isListed(entry))
        return;
    if (duty == SaveDuty::resolveConflict)
        resolveConflict(entry);
    else if (duty == SaveDuty::reread)
        lookAfterSave(entry, result.outcome);
}

void PresetSaver::lookAfterSave(const Entry &entry, PresetFiles::Outcome outcome)
{
    const QString left = entry->relation.file->name();
    if (outcome != PresetFiles::Outcome::skipped || left == entry->name)
        return reread(entry->name);
    m_reconciler->noteUnlisted(left); // others had removed the file that was to get the new name
    m_list.removePreset(entry);
}

/// Another process had the idea of the same name first: both presets stay.
void PresetSaver::resolveConflict(const Entry &entry)
{
    if (!m_list.endNameEdit(entry))
        return;
    m_list.renamePreset(entry, m_list.nextName(entry));
    save(entry, Mode::rename);
}

bool PresetSaver::hear(const Entry &entry)
{
    return entry->relation.hear() == SaveDuty::believe;
}

void PresetSaver::reread(const QString &name)
{
    // Whoever drops the task, the look has ended.
    ++m_looksUnderWay;
    const std::shared_ptr<void> end(nullptr, [this](void *) { m_queue.post([this] { --m_looksUnderWay; }); });
    // On the watcher's queue, in the order of its reports: the watcher knows of the file that is read.
    const auto look = [watcher = m_watcher, reconciler = m_reconciler, path = pathOf(name), end] {
        watcher->checkChangesAtPaths(
            {path}, [reconciler, path = path.toStdString(), end] { reconciler->readAgain(path); });
    };
    m_files.start(look, [&look](const QString &) { look(); });
}

void PresetSaver::remove(const Entry &entry)
{
    m_hasBegun = true;
    m_files.remove(entry->relation.file);
}

void PresetSaver::removeFile(const QString &name, const Entry &entry)
{
    m_hasBegun = true;
    m_files.remove(name, entry ? entry->relation.file : nullptr);
}

void PresetSaver::deletionEnded(const PresetFiles::Deletion &deletion)
{
    const QString &name = deletion.name;
    if (deletion.isForeign) {
        m_reconciler->noteUnlisted(name);
        reread(name); // which lists it again
    } else if (!deletion.reason.isEmpty()) {
        m_reconciler->noteUnlisted(name); // until others do something with it
        fail({Operation::deletion, name, pathOf(name), deletion.reason});
    } else {
        recover(Operation::load, name);
        recover(Operation::deletion, name);
        m_list.fileDeleted(name);
    }
}

void PresetSaver::fail(const PresetsFailure &failure)
{
    m_failures.add(failure);
    m_list.failed(failure);
}

void PresetSaver::recover(Operation operation, const QString &name)
{
    if (const auto ended = m_failures.take(operation, pathOf(name)))
        m_list.recovered(*ended);
}

void PresetSaver::finish()
{
    do {
        m_files.wait();
        m_queue.runAll(); // an outcome can lead to another save, under a name that is free
    } while (m_savesUnderWay > 0);
}

} // namespace vantle
