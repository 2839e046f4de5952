// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/store/PresetFile.h"
#include "VantlePresets/store/PresetIndex.h"
#include "VantlePresets/store/PresetsFailure.h"
#include "watchfolder/VRXWatchFolderDelegate.h"

#include <QtCore/QSet>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace vantle {

class FolderReader;
class MainThreadQueue;

/// Turns what the watcher reports into presets: reads and decodes the files on the watcher's queue (the
/// first inventory on all cores) and hands the results to the main thread, in order.
class FolderReconciler final : public VRXWatchFolderDelegate
{
public:
    /// Takes the results, on the main thread.
    class Receiver
    {
    public:
        virtual void presetsLoaded(PresetIndex loaded) = 0;
        virtual void folderBecameUnreachable() = 0;
        /// The folder can't be read for want of descriptors or memory, which is tried again.
        virtual void folderIsUnread(const QString &reason) = 0;
        virtual void presetAdded(const std::shared_ptr<ListedPreset> &added) = 0;
        /// The watcher has found the file gone.
        virtual void presetRemoved(const QString &name) = 0;
        /// The file was read again. The source is null when the content can't be understood.
        virtual void presetUpdated(const KnownFile &read, const std::shared_ptr<VantlePreset> &source) = 0;
        /// The same found nothing to read.
        virtual void presetGone(const KnownFile &read) = 0;
        /// A file may be half-written: to be read again after a while.
        virtual void readLater(const QString &name) = 0;
        /// A file can't be read. Also before presetsLoaded().
        virtual void loadFailed(const PresetsFailure &failure) = 0;
        /// It can be read again, or is gone.
        virtual void loadRecovered(const QString &name) = 0;

    protected:
        ~Receiver() = default;
    };

    /// Queue and receiver must live until the watcher has stopped.
    FolderReconciler(MainThreadQueue &queue, Receiver &receiver);

    /// Lets a running load end early; its results are dropped. Callable from any thread.
    void cancel() { m_isCancelled = true; }

    /// Whether the preset's file is there but not listed: it could not be loaded or deleted. What others do
    /// with it is an addition. Callable from any thread.
    [[nodiscard]] bool isUnlisted(const QString &name) const;
    /// A listed file's deletion has failed. Callable from any thread.
    void noteUnlisted(const QString &name);

    /// Loads a file of the watcher's inventory as if it had been reported. One that is gone will be reported
    /// as removed, or as updated when it is back, and is loaded then. Callable from any thread.
    void add(const std::string &path);
    /// Reads a preset's file again and reports it as an update, or as removed when it is gone. Callable from
    /// any thread.
    void reread(const std::string &path);
    /// add() for a file that could not be loaded, else reread(). Callable from any thread.
    void readAgain(const std::string &path);

    void watchFolderDidReloadCurrentURLs(VRXWatchFolder *watchFolder) override;
    void watchFolderBecameUnreachable(VRXWatchFolder *watchFolder) override;
    bool shouldContinueFileEnumerationForWatchFolder(VRXWatchFolder *watchFolder,
                                                     const std::error_code &error, const QUrl &url) override;
    void watchFolderFileAddedAtURL(VRXWatchFolder *watchFolder, const QUrl &url, bool isDirectory) override;
    void watchFolderFileRemovedAtURL(VRXWatchFolder *watchFolder, const QUrl &url, bool isDirectory) override;
    void watchFolderFileUpdatedAtURL(VRXWatchFolder *watchFolder, const QUrl &url, bool isDirectory) override;

private:
    struct FolderFile;

    static std::optional<FolderFile> folderFile(std::string path);
    std::shared_ptr<ListedPreset> load(const FolderFile &file, const FolderReader &folder,
                                       QByteArray &buffer);
    void noteListed(const FolderFile &file, bool isListed);
    [[nodiscard]] bool isBeingWritten(const FolderFile &file, const FileStamp &read);
    void tellFailure(const FolderFile &file, const QString &operation, const QString &reason);

    MainThreadQueue &m_queue;
    Receiver &m_receiver;
    QThread *const m_mainThread;
    std::atomic<bool> m_isCancelled = false;
    std::atomic<bool> m_hasUnlisted = false;
    mutable std::mutex m_mutex;
    QSet<QString> m_unlisted; // names of files; guarded by m_mutex
};

} // namespace vantle
