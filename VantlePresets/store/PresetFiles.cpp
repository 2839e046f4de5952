// SPDX-License-Identifier: MIT
#include "VantlePresets/store/PresetFiles.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/document/FileAccess.h"
#include "watchfolder/FileState.h"
#include "watchfolder/VRXWatchFolder.h"

#include <cerrno>
#include <optional>
#include <system_error>

#include <sys/resource.h>
#include <unistd.h>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

constexpr int kUtilityNiceness = 5;

[[noreturn]] void throwError(int code)
{
    throw std::system_error(code, std::generic_category());
}

std::optional<FileState> stateOf(const std::string &path)
{
    std::error_code ignored;
    return readFileState(path.c_str(), ignored);
}

} // namespace

PresetFiles::PresetFiles(std::string folder, std::shared_ptr<VRXWatchFolder> watcher,
                         IsUnreadable isUnreadable)
    : m_folder(std::move(folder)), m_watcher(std::move(watcher)), m_isUnreadable(std::move(isUnreadable))
{
    m_thread.setMaxThreadCount(1);
}

PresetFiles::~PresetFiles()
{
    wait();
}

void PresetFiles::write(const QString &name, const QByteArray &document, Rule rule, Done done)
{
    start([=, this] { done(writeNow(name, document, rule)); });
}

void PresetFiles::rename(const QString &oldName, const QString &newName, const QByteArray &document,
                         Done done)
{
    start([=, this] {
        const Outcome outcome = writeNow(newName, document, Rule::unlessPresent);
        if (outcome == Outcome::skipped)
            logLine("Error writing preset "_L1 + newName + ": "_L1 +
                    QString::fromStdString(std::generic_category().message(EEXIST)));
        done(outcome == Outcome::written ? Outcome::written : Outcome::failed);
        if (outcome == Outcome::written)
            removeNow(oldName, newName);
    });
}

void PresetFiles::remove(const QString &name)
{
    start([=, this] { removeNow(name, QString()); });
}

void PresetFiles::removeLeftovers()
{
    start([this] { removeLeftoverFiles(m_folder); });
}

void PresetFiles::wait()
{
    m_thread.waitForDone();
}

void PresetFiles::start(std::function<void()> task)
{
    m_thread.start([task = std::move(task)] {
        static thread_local const int isLowered =
            ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), kUtilityNiceness);
        static_cast<void>(isLowered);
        task();
    });
}

std::string PresetFiles::pathOf(const QString &name) const
{
    if (name.contains(u'/') || name.contains(QChar(0)))
        throw std::system_error(make_error_code(FileFault::badName));
    return m_folder + '/' + name.toStdString() + ".json";
}

bool PresetFiles::forbids(Rule rule, const QString &name, const std::string &path) const
{
    const auto present = stateOf(path);
    if (rule == Rule::unlessPresent || (rule == Rule::unlessChanged && m_refused.contains(name)))
        return present && !m_isUnreadable(name);
    if (rule == Rule::always || !m_watcher->isWatchingPath())
        return false;
    const auto known = m_watcher->itemAtPath(QString::fromStdString(path));
    return !known || !present || known->lastModificationDate() != present->modified ||
           known->inode() != present->inode;
}

PresetFiles::Outcome PresetFiles::writeNow(const QString &name, const QByteArray &document, Rule rule)
{
    try {
        const std::string path = pathOf(name);
        if (forbids(rule, name, path)) {
            if (rule == Rule::unlessPresent)
                m_refused.insert(name);
            m_watcher->checkChangesAtPaths({QString::fromStdString(path)});
            return Outcome::skipped;
        }
        StagedFile staged(path, document);
        m_watcher->performOwnChange(QString::fromStdString(path), [&] { staged.commit(); });
        m_refused.remove(name);
        staged.syncFolder();
    } catch (const std::exception &error) {
        logLine("Error writing preset "_L1 + name + ": "_L1 + QString::fromUtf8(error.what()));
        return Outcome::failed;
    }
    logLine("Preset Saved: "_L1 + name);
    return Outcome::written;
}

void PresetFiles::removeNow(const QString &name, const QString &replacement) const
{
    const QString path = QString::fromStdString(m_folder) + u'/' + name + ".json"_L1;
    try {
        const std::string target = pathOf(name);
        if (!replacement.isNull()) {
            const auto old = stateOf(target);
            const auto fresh = stateOf(pathOf(replacement));
            if (old && fresh && old->inode == fresh->inode && old->device == fresh->device)
                return;
        }
        m_watcher->performOwnChange(path, [&] {
            if (::unlink(target.c_str()) != 0)
                throwError(errno);
        });
    } catch (const std::exception &error) {
        logLine("Error deleting file "_L1 + path + ": "_L1 + QString::fromUtf8(error.what()));
    }
}

} // namespace vantle
