// SPDX-License-Identifier: MIT
#include "VantlePresets/store/PresetFiles.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/document/StagedFile.h"
#include "VantlePresets/model/PresetFactory.h"
#include "base/WorkingQueue.h"
#include "watchfolder/VRXWatchFolder.h"

#include <cerrno>
#include <chrono>
#include <system_error>

#include <unistd.h>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

/// How long another process may hold the folder's lock before this one goes on without it.
constexpr std::chrono::seconds kPatience{2};

QString reasonOf(const std::exception_ptr &failure)
{
    try {
        std::rethrow_exception(failure);
    } catch (const std::exception &error) {
        return QString::fromUtf8(error.what());
    } catch (...) {
        return u"Unknown error"_s;
    }
}

std::optional<std::size_t> hashOfFile(const std::filesystem::path &path, FileStamp &stamp)
{
    try {
        return decodePreset(readFile(path, &stamp))->documentHash();
    } catch (const std::exception &) {
        return std::nullopt;
    }
}

void logWriteError(const QString &name, const QString &reason)
{
    logLine("Error writing preset "_L1 + name + ": "_L1 + reason);
}

KnownFile::Time now()
{
    return std::chrono::steady_clock::now();
}

} // namespace

/// The folder's lock. Who has waited for it in vain does not wait again until it was to be had.
class PresetFiles::Turn
{
public:
    explicit Turn(PresetFiles &files)
        : m_turn(files.m_folder, files.m_isTurnRefused ? std::chrono::seconds(0) : kPatience)
    {
        if (m_turn.isRefused() && !files.m_isTurnRefused)
            logLine("Another process holds the lock of "_L1 + QString::fromStdString(files.m_folder) +
                    "; going on without it"_L1);
        files.m_isTurnRefused = m_turn.isRefused();
    }

private:
    FolderTurn m_turn;
};

PresetFiles::PresetFiles(std::string folder, std::shared_ptr<VRXWatchFolder> watcher,
                         DeletionEnded deletionEnded)
    : m_folder(std::move(folder)), m_watcher(std::move(watcher)), m_deletionEnded(std::move(deletionEnded))
{
}

PresetFiles::~PresetFiles()
{
    wait();
}

void PresetFiles::save(Save save, Done done)
{
    start([this, save, done] { done(saveNow(save)); },
          [&](const QString &reason) {
              logWriteError(save.name, reason);
              done({Outcome::failed, reason});
          });
}

void PresetFiles::remove(const std::shared_ptr<PresetFile> &file)
{
    start(
        [this, file] {
            if (const QString name = file->name(); !name.isEmpty())
                removeNow(name, [&] { return look(*file, name) != Present::changed; });
        },
        [&](const QString &reason) { endDeletion({.name = file->name(), .reason = reason}, reason); });
}

void PresetFiles::remove(const QString &name, const std::shared_ptr<PresetFile> &file)
{
    start(
        [this, name, file] {
            removeNow(name, [] { return true; });
            if (file && file->name() == name)
                file->set({});
        },
        [&](const QString &reason) { endDeletion({.name = name, .reason = reason}, reason); });
}

void PresetFiles::removeLeftovers()
{
    start([this] { removeLeftoverFiles(m_folder); }, [](const QString &) {});
}

void PresetFiles::wait()
{
    if (m_queue)
        m_queue->waitUntilFinished();
}

void PresetFiles::start(std::function<void()> task, const std::function<void(const QString &)> &refused)
{
    if (!m_queue)
        m_queue = std::make_unique<WorkingQueue>(QualityOfService::Utility);
    if (const std::error_code error = m_queue->ensureThread())
        return refused(QString::fromStdString(error.message()));
    m_queue->add([task = std::move(task)](const WorkingQueue::Cancelled &) { task(); });
}

std::string PresetFiles::pathOf(const QString &name) const
{
    if (name.contains(u'/') || name.contains(QChar(0)))
        throw std::system_error(make_error_code(FileFault::badName));
    return m_folder + '/' + name.toStdString() + ".json";
}

/// What stands at the name, to a preset. A file that says what it said before, whatever else has been done to
/// it, is the same.
PresetFiles::Present PresetFiles::look(const PresetFile &file, const QString &name) const
{
    const std::string path = pathOf(name);
    KnownFile known = file.get();
    const auto present = stampOf(path);
    if (known.name != name) {
        std::error_code error;
        const auto type = std::filesystem::symlink_status(path, error).type();
        if (type == std::filesystem::file_type::not_found)
            return Present::nothing;
        if (error) // too long a name, a folder that may not be searched: no other name would do better
            throw std::system_error(error);
        return Present::foreign;
    }
    if (!present)
        return Present::nothing;
    if (*present == known.stamp)
        return Present::own;
    FileStamp stamp;
    const auto hash = known.documentHash ? hashOfFile(path, stamp) : std::nullopt;
    return hash && hash == known.documentHash ? Present::own : Present::changed;
}

PresetFiles::Result PresetFiles::saveNow(const Save &save)
{
    QString reason;
    Outcome outcome = Outcome::failed;
    try {
        outcome = moveOrWrite(save);
        if (outcome == Outcome::written)
            logLine("Preset Saved: "_L1 + save.name);
        if (outcome != Outcome::refused)
            return {outcome, {}};
        reason = QString::fromStdString(std::make_error_code(std::errc::file_exists).message());
    } catch (...) {
        reason = reasonOf(std::current_exception());
    }
    logWriteError(save.name, reason);
    return {outcome, reason};
}

PresetFiles::Outcome PresetFiles::moveOrWrite(const Save &save)
{
    const QString oldName = save.file->name();
    if (!save.takesOldNameAway || oldName.isEmpty() || oldName == save.name)
        return write(save);
    const bool isSpelling = isOneEntry(pathOf(oldName), pathOf(save.name));
    if (save.precedence == Precedence::unedited)
        return move(save, oldName);
    if (isSpelling) {
        const Outcome outcome = move(save, oldName);
        return outcome == Outcome::refused ? outcome : write(save);
    }
    const Outcome outcome = write(save);
    if (outcome == Outcome::written)
        removeNow(oldName, [] { return true; });
    return outcome;
}

PresetFiles::Outcome PresetFiles::write(const Save &save)
{
    const std::string path = pathOf(save.name);
    const bool isNew = save.file->name() != save.name;
    const auto verdict = [&]() -> std::optional<Outcome> {
        const Present present = look(*save.file, save.name);
        if (present == Present::foreign)
            return Outcome::refused;
        const bool isMoved = present == Present::changed || (present == Present::nothing && !isNew);
        return isMoved && save.precedence != Precedence::edits ? std::optional(Outcome::skipped)
                                                               : std::nullopt;
    };
    if (const auto outcome = verdict())
        return *outcome;
    const QString oldName = save.file->name();
    const bool isRename = isNew && save.takesOldNameAway && !oldName.isEmpty();
    StagedFile staged(path, save.document, StagedFile::Access::asBefore,
                      isRename ? std::filesystem::path(pathOf(oldName)) : save.like);
    {
        const Turn turn(*this);
        if (const auto outcome = verdict()) // syncing took its time
            return *outcome;
        OwnChange own = m_watcher->beginOwnChange(QString::fromStdString(path));
        try {
            staged.commit(isNew ? StagedFile::Target::mustBeNew : StagedFile::Target::replace);
        } catch (const std::system_error &error) {
            if (error.code() == std::errc::file_exists)
                return Outcome::refused;
            throw;
        }
        own.hasPut(staged.descriptor());
        save.file->set({save.name, staged.stamp(), save.documentHash, now()});
    }
    staged.syncFolder();
    return Outcome::written;
}

/// Gives the preset's file the new name as it is.
PresetFiles::Outcome PresetFiles::move(const Save &save, const QString &oldName)
{
    const std::string from = pathOf(oldName);
    const std::string to = pathOf(save.name);
    KnownFile known = save.file->get();
    bool isOwn = false;
    {
        const Turn turn(*this);
        const auto before = stampOf(from);
        const Present present = look(*save.file, oldName);
        if (present == Present::nothing)
            return Outcome::skipped;
        OwnChange arrival = m_watcher->beginOwnChange(QString::fromStdString(to));
        OwnChange departure = m_watcher->beginOwnChange(QString::fromStdString(from));
        try {
            const int moved = moveToFreeName(from, to);
            arrival.hasPut(moved);
            departure.hasRemoved();
            const auto after = stampOf(moved);
            ::close(moved);
            isOwn = present == Present::own && before && after && before->isSameContent(*after);
            if (isOwn)
                known.stamp = *after;
        } catch (const std::system_error &error) {
            if (error.code() == std::errc::file_exists)
                return Outcome::refused;
            if (error.code() == std::errc::no_such_file_or_directory)
                return Outcome::skipped;
            throw;
        }
        known.name = save.name;
        known.since = now();
        save.file->set(known);
    }
    m_deletionEnded({.name = oldName, .reason = {}});
    syncFolder(m_folder);
    return isOwn ? Outcome::written : Outcome::skipped; // the change has yet to be read
}

void PresetFiles::removeNow(const QString &name, const std::function<bool()> &mayRemove)
{
    Deletion deletion{.name = name, .reason = {}};
    QString line;
    try {
        const std::string path = pathOf(name);
        const Turn turn(*this);
        if (!mayRemove()) {
            deletion.isForeign = true;
            line = u"Another process has changed it"_s;
        } else {
            OwnChange own = m_watcher->beginOwnChange(QString::fromStdString(path));
            if (::unlink(path.c_str()) == 0) {
                own.hasRemoved();
            } else {
                const std::error_code error(errno, std::generic_category());
                line = QString::fromStdString(error.message());
                if (error != std::errc::no_such_file_or_directory)
                    deletion.reason = line;
            }
        }
    } catch (...) {
        line = deletion.reason = reasonOf(std::current_exception());
    }
    endDeletion(deletion, line);
}

void PresetFiles::endDeletion(const Deletion &deletion, const QString &complaint) const
{
    if (!complaint.isEmpty())
        logLine("Error deleting file "_L1 + QString::fromStdString(m_folder) + u'/' + deletion.name +
                ".json: "_L1 + complaint);
    m_deletionEnded(deletion);
}

} // namespace vantle
