// SPDX-License-Identifier: MIT
#include "VantlePresets/store/PresetFiles.h"

#include "VantlePresets/core/Log.h"
#include "watchfolder/VRXWatchFolder.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

void requireSuccess(int result)
{
    if (result != 0)
        throw std::system_error(errno, std::generic_category());
}

void logWriteError(const QString &name, const QString &reason)
{
    logLine("Error writing preset "_L1 + name + ": "_L1 + reason);
}

/// Another process was faster while the new content was being written.
struct Outdated
{
};

} // namespace

PresetFiles::PresetFiles(std::string folder, std::shared_ptr<VRXWatchFolder> watcher,
                         FileAppeared fileAppeared, DeletionEnded deletionEnded)
    : m_folder(std::move(folder)), m_watcher(std::move(watcher)), m_fileAppeared(std::move(fileAppeared)),
      m_deletionEnded(std::move(deletionEnded))
{
}

PresetFiles::~PresetFiles()
{
    wait();
}

void PresetFiles::write(const Save &save, const Done &done)
{
    start([this, save, done] { done(saveNow(save)); });
}

void PresetFiles::rename(const Save &save, const Done &done)
{
    start([this, save, done] { done(renameNow(save)); });
}

PresetFiles::Result PresetFiles::renameNow(const Save &save) const
{
    const QString oldName = save.file->name();
    const bool isElsewhere = !oldName.isEmpty() && oldName != save.name;
    if (isElsewhere && !save.hasEdits && moveChangedFile(save, oldName))
        return {Outcome::outdated, {}};
    const Result result = saveNow(save);
    const bool isWritten = result.outcome == Outcome::written || result.outcome == Outcome::overtaken;
    if (isWritten && isElsewhere) {
        // Both names can be one file's, on a file system that folds case.
        const auto old = stampOf(m_folder + '/' + oldName.toStdString() + ".json");
        if (!old || old != save.file->stampAt(save.name))
            removeNow(oldName);
    }
    return result;
}

void PresetFiles::remove(const std::shared_ptr<PresetFile> &file)
{
    start([this, file] {
        if (const QString name = file->name(); !name.isEmpty())
            removeNow(name);
    });
}

void PresetFiles::remove(const QString &name, const std::shared_ptr<PresetFile> &file)
{
    start([this, name, file] {
        removeNow(name);
        if (file && file->name() == name)
            file->clear();
    });
}

void PresetFiles::removeLeftovers()
{
    start([this] { removeLeftoverFiles(m_folder); });
}

void PresetFiles::wait()
{
    m_queue.waitUntilFinished();
}

void PresetFiles::start(std::function<void()> task)
{
    m_queue.add([task = std::move(task)](const WorkingQueue::Cancelled &) { task(); });
}

std::string PresetFiles::pathOf(const QString &name) const
{
    if (name.contains(u'/') || name.contains(QChar(0)))
        throw std::system_error(make_error_code(FileFault::badName));
    return m_folder + '/' + name.toStdString() + ".json";
}

PresetFiles::Result PresetFiles::saveNow(const Save &save) const
{
    QString reason;
    try {
        return {writeNow(save), {}};
    } catch (const std::exception &error) {
        reason = QString::fromUtf8(error.what());
    } catch (...) {
        reason = u"Unknown error"_s;
    }
    logWriteError(save.name, reason);
    return {Outcome::failed, reason};
}

PresetFiles::Outcome PresetFiles::writeNow(const Save &save) const
{
    bool isStaged = false;
    bool isOvertaken = false;
    try {
        const std::string path = pathOf(save.name);
        const QString watchedPath = QString::fromStdString(path);
        const auto own = save.file->stampAt(save.name);
        const auto present = stampOf(path);
        // A missing file that the watcher still knows is a removal that it is about to report.
        const bool isMissing = !present && m_watcher->hasItemAtPath(watchedPath);
        if (own && !save.hasEdits && (isMissing || (present && present != own)))
            return Outcome::outdated;
        if (!own && present)
            throw std::system_error(std::make_error_code(std::errc::file_exists));
        StagedFile staged(path, save.document);
        isStaged = true;
        m_watcher->performOwnChange(watchedPath, [&] {
            if (!own)
                staged.commit(StagedFile::Target::mustBeNew);
            else if (save.hasEdits || stampOf(path) == present) // syncing took its time
                staged.commit();
            else
                throw Outdated();
        });
        save.file->set(save.name, staged.stamp());
        isOvertaken = stampOf(path) != staged.stamp();
        staged.syncFolder();
    } catch (const Outdated &) {
        return Outcome::outdated;
    } catch (const std::system_error &error) {
        if (error.code() != std::errc::file_exists)
            throw;
        logWriteError(save.name, QString::fromUtf8(error.what()));
        // When it appeared in the last moment, the watcher has taken it for this process's own.
        if (isStaged)
            m_fileAppeared(pathOf(save.name));
        return Outcome::refused;
    }
    logLine("Preset Saved: "_L1 + save.name);
    return isOvertaken ? Outcome::overtaken : Outcome::written;
}

/// Gives the preset's file the new name as it is, if others have changed it. False when it is unchanged, or
/// can't be renamed.
bool PresetFiles::moveChangedFile(const Save &save, const QString &oldName) const
{
    try {
        const std::string from = pathOf(oldName);
        const std::string to = pathOf(save.name);
        const auto known = save.file->stampAt(oldName);
        const auto present = stampOf(from);
        if (!known || !present || present == known || stampOf(to))
            return false;
        m_watcher->performOwnChange(QString::fromStdString(to),
                                    [&] { renameToFreeName(AT_FDCWD, from.c_str(), to.c_str()); });
        takeAway(from, [] {});             // the removal was ours as well
        save.file->set(save.name, *known); // the change itself has yet to be read
        return true;
    } catch (const std::system_error &error) {
        if (error.code() == std::errc::file_exists) // taken for this process's own, as in writeNow()
            m_fileAppeared(pathOf(save.name));
        return false;
    } catch (const std::exception &) {
        return false;
    }
}

void PresetFiles::takeAway(const std::string &path, const std::function<void()> &change) const
{
    const QString watchedPath = QString::fromStdString(path);
    const auto lookAfterwards = [&] {
        // Made anew at once by another process, and taken for this process's own.
        if (m_watcher->hasItemAtPath(watchedPath))
            m_fileAppeared(path);
    };
    try {
        m_watcher->performOwnChange(watchedPath, change);
    } catch (const std::system_error &error) {
        if (error.code() == std::errc::no_such_file_or_directory)
            lookAfterwards();
        throw;
    }
    lookAfterwards();
}

void PresetFiles::removeNow(const QString &name) const
{
    const QString path = QString::fromStdString(m_folder) + u'/' + name + ".json"_L1;
    QString reason;
    bool isGone = false;
    try {
        const std::string target = pathOf(name);
        takeAway(target, [&] { requireSuccess(::unlink(target.c_str())); });
        isGone = true;
    } catch (const std::system_error &error) {
        reason = QString::fromUtf8(error.what());
        isGone = error.code() == std::errc::no_such_file_or_directory;
    } catch (const std::exception &error) {
        reason = QString::fromUtf8(error.what());
    }
    if (!reason.isEmpty())
        logLine("Error deleting file "_L1 + path + ": "_L1 + reason);
    m_deletionEnded(name, isGone ? QString() : reason);
}

} // namespace vantle
