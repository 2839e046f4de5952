// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/VRXWatchFolderDelegate.h"

#include <atomic>
#include <memory>
#include <string>

namespace vantle {

/// The delegate for the duration of one operation on the working queue. Once watching is stopped it is not
/// called again: the watcher that the callbacks name may be gone. A cancelled operation still reports what it
/// recorded.
class ChangeReport
{
public:
    ChangeReport(std::string folder, VRXWatchFolder *watchFolder,
                 std::shared_ptr<VRXWatchFolderDelegate> delegate, const std::atomic<bool> &cancelled,
                 std::shared_ptr<const std::atomic<bool>> stopped,
                 VRXWatchFolderDelegate::EnumerationErrorHandler errorHandler);
    /// Lets go of the delegate on the main thread, where it may be destroyed.
    ~ChangeReport();
    ChangeReport(const ChangeReport &) = delete;
    ChangeReport &operator=(const ChangeReport &) = delete;

    [[nodiscard]] bool cancelled() const { return m_cancelled || *m_stopped; }
    [[nodiscard]] bool stopped() const { return *m_stopped; }

    void added(const std::string &path, bool isDirectory);
    void updated(const std::string &path, bool isDirectory);
    void removed(const std::string &path, bool isDirectory);
    /// The batch callback, when any of the three was called.
    void finish();

    void becameUnreachable();
    void didReload();
    bool shouldContinue(const std::error_code &error, const std::string &absolutePath);

private:
    using FileCallback = void (VRXWatchFolderDelegate::*)(VRXWatchFolder *, const QUrl &, bool);
    void report(FileCallback callback, QList<QUrl> &list, const std::string &path, bool isDirectory);
    [[nodiscard]] bool canCall() const { return m_delegate && !*m_stopped; }

    const std::string m_folder;
    VRXWatchFolder *const m_watchFolder;
    std::shared_ptr<VRXWatchFolderDelegate> m_delegate;
    const std::atomic<bool> &m_cancelled;
    const std::shared_ptr<const std::atomic<bool>> m_stopped;
    const VRXWatchFolderDelegate::EnumerationErrorHandler m_errorHandler;
    QList<QUrl> m_added;
    QList<QUrl> m_updated;
    QList<QUrl> m_removed;
};

} // namespace vantle
