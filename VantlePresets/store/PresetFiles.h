// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtCore/QThreadPool>

#include <functional>
#include <memory>
#include <string>

namespace vantle {

class VRXWatchFolder;

/// Writes, renames and deletes preset files of one folder, one after the other in the order of the calls,
/// on a thread of its own with a lower priority. Every outcome is logged as one line. The watcher is told
/// of each change before others can see it, so that it does not come back as an event.
///
/// Called on one thread. Destruction waits for the tasks that were started.
class PresetFiles
{
public:
    enum class Rule {
        always,        ///< the new content replaces whatever is there
        unlessChanged, ///< not when the file was changed or removed since the watcher last looked
        unlessPresent, ///< not when there is a file that can be loaded: it is somebody else's
    };
    enum class Outcome { written, skipped, failed };
    /// Called on the file thread.
    using Done = std::function<void(Outcome)>;

    /// Says of a file in the folder that it could not be loaded. Callable from any thread.
    using IsUnreadable = std::function<bool(const QString &name)>;

    PresetFiles(std::string folder, std::shared_ptr<VRXWatchFolder> watcher, IsUnreadable isUnreadable);
    ~PresetFiles();
    PresetFiles(const PresetFiles &) = delete;
    PresetFiles &operator=(const PresetFiles &) = delete;

    void write(const QString &name, const QByteArray &document, Rule rule, Done done);
    /// Writes the new file, then deletes the old one; a failure leaves the old one.
    void rename(const QString &oldName, const QString &newName, const QByteArray &document, Done done);
    void remove(const QString &name);
    /// Runs a task after those that were started before. For what must not overtake a write.
    void start(std::function<void()> task);
    /// Deletes what killed processes left behind.
    void removeLeftovers();

    void wait();

private:
    [[nodiscard]] std::string pathOf(const QString &name) const;
    [[nodiscard]] bool forbids(Rule rule, const QString &name, const std::string &path) const;
    Outcome writeNow(const QString &name, const QByteArray &document, Rule rule);
    /// Not when the name is another one of the replacement's file (on a file system that folds case, say).
    void removeNow(const QString &name, const QString &replacement) const;

    std::string m_folder;
    std::shared_ptr<VRXWatchFolder> m_watcher;
    IsUnreadable m_isUnreadable;
    QSet<QString> m_refused; // names whose file turned out to be somebody else's; file thread only
    QThreadPool m_thread;
};

} // namespace vantle
