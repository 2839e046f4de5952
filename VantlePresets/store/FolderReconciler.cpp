// SPDX-License-Identifier: MIT
#include "VantlePresets/store/FolderReconciler.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/core/ProgrammingFault.h"
#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/store/MainThreadQueue.h"
#include "base/NativePath.h"
#include "base/OpenFileProbe.h"
#include "watchfolder/VRXWatchFolder.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <stdexcept>
#include <thread>

namespace vantle {

using namespace Qt::StringLiterals;

namespace {

bool isThere(const std::string &path)
{
    std::error_code unknown;
    return std::filesystem::symlink_status(path, unknown).type() != std::filesystem::file_type::not_found;
}

} // namespace

struct FolderReconciler::FolderFile
{
    std::string path; // the file system's bytes
    QString fileName;
    QString name; ///< the preset's: the file name without its extension
    bool isUtf8;
};

FolderReconciler::FolderReconciler(MainThreadQueue &queue, Receiver &receiver)
    : m_queue(queue), m_receiver(receiver), m_mainThread(queue.thread())
{
}

/// Nothing for a path that does not belong to the store: the extension must be "json", in this case.
std::optional<FolderReconciler::FolderFile> FolderReconciler::folderFile(std::string path)
{
    constexpr std::string_view kExtension = ".json";
    const std::string_view name = splitPath(path).name;
    if (name.size() <= kExtension.size() || !name.ends_with(kExtension))
        return std::nullopt;
    const QByteArrayView bytes(name.data(), static_cast<qsizetype>(name.size()));
    const QString fileName = QString::fromUtf8(bytes);
    const bool isUtf8 = fileName.toUtf8() == bytes;
    return FolderFile{std::move(path), fileName, presetNameFromPath(fileName), isUtf8};
}

/// Null, with a line in the log unless the file is gone, when it can't be loaded. Callable from any thread.
std::shared_ptr<ListedPreset> FolderReconciler::load(const FolderFile &file, const FolderReader &folder,
                                                     QByteArray &buffer)
{
    KnownFile read{
        .name = file.name, .stamp = {}, .documentHash = {}, .since = std::chrono::steady_clock::now()};
    try {
        if (!file.isUtf8)
            throw std::runtime_error("File name is not UTF-8");
        folder.read(file.path, buffer, &read.stamp);
        const auto preset = decodePreset(buffer);
        preset->setName(file.name);
        auto listed = std::make_shared<ListedPreset>(preset);
        read.documentHash = preset->documentHash();
        listed->relation.documentHash = read.documentHash;
        listed->relation.file->set(read);
        noteListed(file, true);
        return listed;
    } catch (const std::exception &error) {
        noteListed(file, false);
        if (!isThere(file.path))
            return nullptr; // removed before it could be read, which the watcher is about to report
        if (read.stamp.inode != 0 && isBeingWritten(file, read.stamp))
            return nullptr; // and reported when its writer closes it
        tellFailure(file, u"loading"_s, QString::fromUtf8(error.what()));
        return nullptr;
    }
}

void FolderReconciler::watchFolderDidReloadCurrentURLs(VRXWatchFolder *watchFolder)
{
    if (!watchFolder)
        programmingFault("a reload without its watch folder");

    std::vector<std::string> paths = watchFolder->nativePaths();
    const std::size_t count = paths.size();
    const FolderReader folder(count == 0 ? std::string() : std::string(splitPath(paths.front()).directory));
    std::atomic<std::size_t> next = 0;
    std::mutex moving; // objects that move one by one on several threads slow each other down
    const auto loadSome = [&](PresetIndex::Entries &entries) {
        constexpr std::size_t kChunk = 32;
        QByteArray buffer;
        std::size_t moved = 0;
        for (std::size_t begin; (begin = next.fetch_add(kChunk)) < count && !m_isCancelled;) {
            for (std::size_t i = begin; i < std::min(begin + kChunk, count); ++i) {
                const auto file = folderFile(std::move(paths[i]));
                if (auto listed = file ? load(*file, folder, buffer) : nullptr)
                    entries.push_back(std::move(listed));
            }
            const std::lock_guard lock(moving);
            for (; moved < entries.size(); ++moved)
                entries[moved]->preset->moveWithSettingsToThread(m_mainThread);
        }
        PresetIndex::sort(entries);
    };
    const std::size_t wanted = std::min<std::size_t>(std::thread::hardware_concurrency(), count / 64);
    std::vector<PresetIndex::Entries> parts(std::max<std::size_t>(wanted, 1));
    {
        std::vector<std::jthread> helpers;
        try {
            for (std::size_t i = 1; i < parts.size(); ++i)
                helpers.emplace_back(loadSome, std::ref(parts[i]));
        } catch (const std::system_error &) {
            // No more threads: fewer do it all.
        }
        loadSome(parts.front());
    }
    if (m_isCancelled)
        return;

    const auto loaded = std::make_shared<PresetIndex>();
    PresetIndex::Entries entries;
    for (PresetIndex::Entries &part : parts)
        entries = PresetIndex::merged(std::move(entries), std::move(part));
    loaded->merge(std::move(entries));
    m_queue.post([this, loaded] { m_receiver.presetsLoaded(std::move(*loaded)); });
}

void FolderReconciler::watchFolderBecameUnreachable(VRXWatchFolder *)
{
    m_queue.post([this] { m_receiver.folderBecameUnreachable(); });
}

bool FolderReconciler::shouldContinueFileEnumerationForWatchFolder(VRXWatchFolder *,
                                                                   const std::error_code &error, const QUrl &)
{
    if (error == std::errc::too_many_files_open)
        m_queue.post(
            [this, reason = QString::fromStdString(error.message())] { m_receiver.folderIsUnread(reason); });
    return true;
}

void FolderReconciler::watchFolderFileAddedAtURL(VRXWatchFolder *, const QUrl &url, bool)
{
    add(nativePathOfUrl(url));
}

void FolderReconciler::add(const std::string &path)
{
    const auto file = folderFile(path);
    if (!file)
        return;
    const FolderReader folder(std::string(splitPath(path).directory));
    QByteArray buffer;
    const KnownFile before{
        .name = file->name, .stamp = {}, .documentHash = {}, .since = std::chrono::steady_clock::now()};
    const auto listed = load(*file, folder, buffer);
    if (!listed && !isThere(file->path)) // whoever asks for a look wants to know that, too
        m_queue.post([this, before] { m_receiver.presetGone(before); });
    if (!listed)
        return;
    listed->preset->moveWithSettingsToThread(m_mainThread);
    m_queue.post([this, listed] { m_receiver.presetAdded(listed); });
}

void FolderReconciler::noteListed(const FolderFile &file, bool isListed)
{
    if (isListed && !m_hasUnlisted)
        return;
    const std::lock_guard lock(m_mutex);
    if (!isListed)
        m_unlisted.insert(file.name);
    else if (m_unlisted.remove(file.name))
        m_queue.post([this, name = file.name] { m_receiver.loadRecovered(name); });
    m_hasUnlisted = !m_unlisted.isEmpty();
}

void FolderReconciler::noteUnlisted(const QString &name)
{
    const std::lock_guard lock(m_mutex);
    m_unlisted.insert(name);
    m_hasUnlisted = true;
}

void FolderReconciler::tellFailure(const FolderFile &file, const QString &operation, const QString &reason)
{
    logLine("Error "_L1 + operation + " Preset "_L1 + file.fileName + ": "_L1 + reason);
    m_queue.post([this, failure = PresetsFailure{PresetsFailure::Operation::load, file.name,
                                                 QString::fromStdString(file.path), reason}] {
        m_receiver.loadFailed(failure);
    });
}

/// Whether another process is, or may be, in the middle of writing the file. Only asked about one that can't
/// be understood, which is read again then.
bool FolderReconciler::isBeingWritten(const FolderFile &file, const FileStamp &read)
{
    constexpr std::time_t kGrace = 2; // seconds, in which a writer whom nobody can see comes to an end
    const auto present = stampOf(file.path);
    if (present && present != read)
        return true; // the watcher reports it
    const Writer writer = present ? probeWriter(file.path) : Writer::None;
    if (writer == Writer::None)
        return false;
    if (writer == Writer::Unknown && std::time(nullptr) - present->changed.tv_sec > kGrace)
        return false;
    // A writer that ends without another word leaves nothing to report.
    m_queue.post([this, name = file.name] { m_receiver.readLater(name); });
    return true;
}

bool FolderReconciler::isUnlisted(const QString &name) const
{
    const std::lock_guard lock(m_mutex);
    return m_unlisted.contains(name);
}

void FolderReconciler::watchFolderFileRemovedAtURL(VRXWatchFolder *, const QUrl &url, bool)
{
    const auto file = folderFile(nativePathOfUrl(url));
    if (!file)
        return;
    noteListed(*file, true); // there is nothing left to read
    m_queue.post([this, name = file->name] { m_receiver.presetRemoved(name); });
}

void FolderReconciler::watchFolderFileUpdatedAtURL(VRXWatchFolder *, const QUrl &url, bool)
{
    readAgain(nativePathOfUrl(url));
}

void FolderReconciler::readAgain(const std::string &path)
{
    const auto file = folderFile(path);
    if (!file)
        return;
    if (isUnlisted(file->name))
        add(path);
    else
        reread(path);
}

void FolderReconciler::reread(const std::string &path)
{
    const auto file = folderFile(path);
    if (!file)
        return;
    KnownFile read{
        .name = file->name, .stamp = {}, .documentHash = {}, .since = std::chrono::steady_clock::now()};
    QByteArray document;
    try {
        document = readFile(path, &read.stamp);
    } catch (const std::system_error &error) {
        if (error.code() == std::errc::no_such_file_or_directory) {
            noteListed(*file, false); // to the watcher it may still be there, and come back as an update
            m_queue.post([this, read] { m_receiver.presetGone(read); });
        } else {
            noteListed(*file, false);
            tellFailure(*file, u"updating"_s, QString::fromUtf8(error.what()));
        }
        return;
    }
    noteListed(*file, true);
    std::shared_ptr<VantlePreset> source;
    try {
        source = decodePreset(document);
        source->setName(file->name);
        read.documentHash = source->documentHash();
        source->moveWithSettingsToThread(m_mainThread);
    } catch (const std::exception &) {
        // Half an edit of somebody's: the preset stays as it is until the file can be read again.
    }
    m_queue.post([this, read, source] { m_receiver.presetUpdated(read, source); });
}

} // namespace vantle
