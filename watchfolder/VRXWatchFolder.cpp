// SPDX-License-Identifier: MIT
#include "watchfolder/VRXWatchFolder.h"

#include "base/NativePath.h"
#include "watchfolder/OwnChangeState.h"
#include "watchfolder/WatchFolderCore.h"

#include <cmath>

namespace vantle {

namespace {

std::chrono::milliseconds milliseconds(double seconds)
{
    return std::chrono::milliseconds(std::isfinite(seconds) && seconds > 0 ? std::lround(seconds * 1000) : 0);
}

} // namespace

VRXWatchFolderDelegate::~VRXWatchFolderDelegate() = default;

VRXWatchFolder::VRXWatchFolder(const QString &folderPath, std::weak_ptr<VRXWatchFolderDelegate> delegate)
    : VRXWatchFolder(folderPath, std::move(delegate), false, 1.0, {}, {})
{
}

VRXWatchFolder::VRXWatchFolder(const QString &folderPath, std::weak_ptr<VRXWatchFolderDelegate> delegate,
                               bool deepWatch, double latency, const QStringList &UTTypesFilter,
                               const QStringList &extensionsFilter, WatchFolderEnvironment environment)
    : m_folderPath(folderPath), m_latency(latency),
      m_core(std::make_shared<WatchFolderCore>(this, folderPath, deepWatch, milliseconds(latency),
                                               ItemFilter(UTTypesFilter, extensionsFilter),
                                               std::move(environment)))
{
    m_core->setDelegate(std::move(delegate));
}

VRXWatchFolder::~VRXWatchFolder()
{
    m_core->stop();
}

bool VRXWatchFolder::deepWatch() const
{
    return m_core->deepWatch;
}

QStringList VRXWatchFolder::UTTypesFilter() const
{
    return m_core->filter.types();
}

QStringList VRXWatchFolder::extensionFilter() const
{
    return m_core->filter.extensions();
}

QStringList VRXWatchFolder::propertiesToFetch() const
{
    return {QStringLiteral("contentModificationDate"), QStringLiteral("typeIdentifier"),
            QStringLiteral("isDirectory")};
}

unsigned VRXWatchFolder::enumerationOptions() const
{
    return m_core->enumerationOptions();
}

bool VRXWatchFolder::isWatchingPath() const
{
    const auto session = m_core->session();
    return session && session->isWatchingPath();
}

QString VRXWatchFolder::displayName() const
{
    const std::lock_guard lock(m_nameMutex);
    return m_displayName;
}

void VRXWatchFolder::setDisplayName(const QString &name)
{
    const std::lock_guard lock(m_nameMutex);
    m_displayName = name;
}

std::shared_ptr<VRXWatchFolderDelegate> VRXWatchFolder::delegate() const
{
    return m_core->delegate();
}

void VRXWatchFolder::setDelegate(std::weak_ptr<VRXWatchFolderDelegate> delegate)
{
    m_core->setDelegate(std::move(delegate));
}

bool VRXWatchFolder::ignoreSelf() const
{
    return m_core->ignoreSelf;
}

void VRXWatchFolder::setIgnoreSelf(bool ignore)
{
    m_core->ignoreSelf = ignore;
}

QualityOfService VRXWatchFolder::qualityOfService() const
{
    return m_core->qualityOfService;
}

void VRXWatchFolder::setQualityOfService(QualityOfService qualityOfService)
{
    m_core->qualityOfService = qualityOfService;
}

void VRXWatchFolder::setBackend(WatchBackend backend)
{
    m_core->wantedBackend = backend;
}

WatchBackend VRXWatchFolder::backend() const
{
    const auto session = m_core->session();
    return session ? session->stream().backend() : WatchBackend::Automatic;
}

QString VRXWatchFolder::streamDescription() const
{
    const auto session = m_core->session();
    return session ? session->stream().description() : QString();
}

void VRXWatchFolder::setNoticesReplacements(bool notices)
{
    m_core->noticesReplacements = notices;
}

bool VRXWatchFolder::restartWhereWeLeftOff() const
{
    return m_core->restartWhereWeLeftOff;
}

void VRXWatchFolder::setRestartWhereWeLeftOff(bool restart)
{
    m_core->restartWhereWeLeftOff = restart;
}

VRXWatchFolderDelegate::EnumerationErrorHandler VRXWatchFolder::fileEnumerationErrorHandler() const
{
    const auto session = m_core->session();
    return session ? session->errorHandler() : nullptr;
}

void VRXWatchFolder::setFileEnumerationErrorHandler(VRXWatchFolderDelegate::EnumerationErrorHandler handler)
{
    if (const auto session = m_core->session())
        session->setErrorHandler(std::move(handler));
}

bool VRXWatchFolder::startWatching(WatchFolderError *error)
{
    return m_core->start(error);
}

void VRXWatchFolder::stopWatching()
{
    m_core->stop();
}

void VRXWatchFolder::cancel()
{
    if (const auto session = m_core->session())
        session->cancel();
}

bool VRXWatchFolder::cancelRequested() const
{
    return m_core->cancelRequested;
}

void VRXWatchFolder::setCancelRequested(bool requested)
{
    m_core->cancelRequested = requested;
}

void VRXWatchFolder::flush(std::function<void()> done)
{
    if (const auto session = m_core->session())
        session->flush(std::move(done));
    else
        done();
}

OwnChange VRXWatchFolder::beginOwnChange(const QString &path)
{
    auto relative = m_core->relativePath(nativePath(path));
    auto session = m_core->session();
    if (!session || !relative || m_core->filter.shouldIgnore(nativePath(path)))
        return {};
    return OwnChange(
        std::make_unique<OwnChange::State>(OwnChange::State{std::move(session), std::move(*relative), {}}));
}

void VRXWatchFolder::performOwnChange(const QString &path, const std::function<void()> &change)
{
    OwnChange own = beginOwnChange(path);
    try {
        change();
    } catch (...) {
        own.hasMadeWhatIsThere(); // whatever it did before it failed
        throw;
    }
    own.hasMadeWhatIsThere();
}

void VRXWatchFolder::forceChangesCheckingAtPath(const QString &path)
{
    if (const auto session = m_core->session())
        session->forceChangesChecking(nativePath(path));
}

void VRXWatchFolder::checkChangesAtPaths(const QSet<QString> &paths, std::function<void()> done)
{
    const auto session = m_core->session();
    if (!session)
        return;
    std::vector<ChangedPath> changed;
    for (const QString &path : paths) {
        if (auto relative = m_core->relativePath(nativePath(path)))
            changed.push_back({.path = std::move(*relative)});
    }
    session->checkChangesAtPaths(std::move(changed), std::move(done));
}

std::optional<VRXWatchFolderItem> VRXWatchFolder::itemAtPath(const QString &path) const
{
    const std::string native = nativePath(path);
    const auto relative = m_core->relativePath(native);
    const auto record = relative ? m_core->inventory()->find(*relative) : std::nullopt;
    if (!record)
        return std::nullopt;
    return VRXWatchFolderItem(urlForNativePath(native),
                              record->hasState ? std::optional(record->state) : std::nullopt);
}

bool VRXWatchFolder::hasItemAtPath(const QString &path) const
{
    return itemAtPath(path).has_value();
}

QList<QUrl> VRXWatchFolder::URLs() const
{
    QList<QUrl> urls;
    m_core->inventory()->forEach([this, &urls](const std::string &path, const Inventory::Record &) {
        urls.append(urlForNativePath(m_core->folder + '/' + path));
    });
    return urls;
}

std::vector<std::string> VRXWatchFolder::nativePaths() const
{
    std::vector<std::string> paths;
    const std::string prefix = m_core->folder + '/';
    m_core->inventory()->forEach([&](const std::string &path, const Inventory::Record &) {
        std::string &absolute = paths.emplace_back();
        absolute.reserve(prefix.size() + path.size());
        absolute.append(prefix).append(path);
    });
    return paths;
}

QHash<QString, QUrl> VRXWatchFolder::URLsDictionary() const
{
    QHash<QString, QUrl> urls;
    for (const QUrl &url : URLs())
        urls.insert(displayPath(nativePathOfUrl(url)), url);
    return urls;
}

QHash<QString, VRXWatchFolderItem> VRXWatchFolder::pathToItemsDictionary() const
{
    QHash<QString, VRXWatchFolderItem> items;
    m_core->inventory()->forEach([this, &items](const std::string &path, const Inventory::Record &record) {
        const std::string absolute = m_core->folder + '/' + path;
        items.insert(displayPath(absolute),
                     VRXWatchFolderItem(urlForNativePath(absolute),
                                        record.hasState ? std::optional(record.state) : std::nullopt));
    });
    return items;
}

bool VRXWatchFolder::shouldIgnoreURL(const QUrl &url) const
{
    return m_core->filter.shouldIgnore(nativePathOfUrl(url));
}

std::optional<QString> VRXWatchFolder::fsTypeNameFromPath(const QString &path)
{
    return fileSystemTypeName(path);
}

} // namespace vantle
