// SPDX-License-Identifier: MIT
#include "watchfolder/ChangeReport.h"

#include "base/NativePath.h"
#include "base/RunLoop.h"

namespace vantle {

ChangeReport::ChangeReport(std::string folder, VRXWatchFolder *watchFolder,
                           std::shared_ptr<VRXWatchFolderDelegate> delegate,
                           const std::atomic<bool> &cancelled,
                           std::shared_ptr<const std::atomic<bool>> stopped,
                           VRXWatchFolderDelegate::EnumerationErrorHandler errorHandler)
    : m_folder(std::move(folder)), m_watchFolder(watchFolder), m_delegate(std::move(delegate)),
      m_cancelled(cancelled), m_stopped(std::move(stopped)), m_errorHandler(std::move(errorHandler))
{
}

ChangeReport::~ChangeReport()
{
    if (m_delegate)
        RunLoop::main()->post([delegate = std::move(m_delegate)] {});
}

void ChangeReport::added(const std::string &path, bool isDirectory)
{
    report(&VRXWatchFolderDelegate::watchFolderFileAddedAtURL, m_added, path, isDirectory);
}

void ChangeReport::updated(const std::string &path, bool isDirectory)
{
    report(&VRXWatchFolderDelegate::watchFolderFileUpdatedAtURL, m_updated, path, isDirectory);
}

void ChangeReport::removed(const std::string &path, bool isDirectory)
{
    report(&VRXWatchFolderDelegate::watchFolderFileRemovedAtURL, m_removed, path, isDirectory);
}

void ChangeReport::report(FileCallback callback, QList<QUrl> &list, const std::string &path, bool isDirectory)
{
    if (!canCall())
        return;
    const QUrl url = urlForNativePath(m_folder + '/' + path);
    list.append(url);
    (m_delegate.get()->*callback)(m_watchFolder, url, isDirectory);
}

void ChangeReport::finish()
{
    if (canCall() && !(m_added.isEmpty() && m_updated.isEmpty() && m_removed.isEmpty()))
        m_delegate->watchFolderAddedURLsUpdatedURLsDeletedURLs(m_watchFolder, m_added, m_updated, m_removed);
}

void ChangeReport::becameUnreachable()
{
    if (canCall())
        m_delegate->watchFolderBecameUnreachable(m_watchFolder);
}

void ChangeReport::didReload()
{
    if (canCall())
        m_delegate->watchFolderDidReloadCurrentURLs(m_watchFolder);
}

bool ChangeReport::shouldContinue(const std::error_code &error, const std::string &absolutePath)
{
    return *m_stopped || !m_errorHandler || m_errorHandler(urlForNativePath(absolutePath), error);
}

} // namespace vantle
