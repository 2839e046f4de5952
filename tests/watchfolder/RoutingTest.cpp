// SPDX-License-Identifier: MIT
#include "tests/support/ChildProcess.h"
#include "tests/support/OtherUser.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Wait.h"
#include "tests/watchfolder/FakeEventStream.h"
#include "tests/watchfolder/Recorder.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

using namespace vantle;
using namespace vantle::test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

namespace {

// The rules above the event source, driven by one that says what the test wants.
class WatcherOnFakeStream : public testing::Test
{
protected:
    WatcherOnFakeStream()
    {
        options.environment.startStream = [this](const auto &configuration, WatchBackend,
                                                 std::error_code &error) {
            error = startError;
            auto made = std::make_shared<FakeEventStream>(configuration);
            made->watchError = watchError;
            stream = error ? nullptr : made;
            return stream;
        };
        options.environment.fileSystemTypeName = [this](const QString &) { return fileSystem; };
        options.environment.startTimer = [this](std::chrono::milliseconds interval,
                                                std::function<void()> tick) {
            intervals.push_back(interval);
            this->tick = std::move(tick);
            return std::shared_ptr<void>(&intervals, [this](void *) { this->tick = nullptr; });
        };
    }

    TemporaryFolder folder;
    std::shared_ptr<FakeEventStream> stream;
    std::error_code startError;
    std::error_code watchError;
    std::optional<QString> fileSystem;
    std::vector<std::chrono::milliseconds> intervals;
    std::function<void()> tick;
    Watching::Options options;
};

TEST_F(WatcherOnFakeStream, RoutesEventsByTheirFlags)
{
    const struct
    {
        const char *name;
        bool deep;
        const char *path;
        quint32 flags;
        std::vector<std::string> heard;
    } cases[] = {
        {"a file", false, "new", ItemIsFile | ItemCreated, {"added new"}},
        {"a vanished file", false, "old", ItemIsFile | ItemRemoved, {"removed old"}},
        {"a file that did not change", false, "same", ItemIsFile | ItemModified, {}},
        {"a hidden file", false, ".hidden", ItemIsFile | ItemCreated, {}},
        {"in a hidden directory", true, ".Trashes/f", ItemIsFile | ItemCreated, {}},
        {"below, not deep", false, "d/f", ItemIsFile | ItemCreated, {}},
        {"below, deep", true, "d/f", ItemIsFile | ItemCreated, {"added d/f"}},
        {"a directory without news", true, "d", ItemIsDir | ItemInodeMetaMod, {}},
        {"a directory to scan", true, "d", ItemIsDir | MustScanSubDirs, {"added d", "added d/f"}},
        {"a renamed directory", true, "d", ItemIsDir | ItemRenamed, {"added d", "added d/f"}},
        {"the folder to scan",
         true,
         "",
         ItemIsDir | MustScanSubDirs,
         {"added new", "added d", "added d/f", "removed old"}},
        {"the folder to scan, not deep",
         false,
         "",
         ItemIsDir | MustScanSubDirs,
         {"added new", "added d", "removed old"}},
        {"the root changed", false, "", RootChanged, {"added new", "added d", "removed old"}},
        {"an own creation", false, "new", ItemIsFile | ItemCreated | OwnEvent, {}},
        {"an own removal", false, "old", ItemIsFile | ItemRemoved | OwnEvent, {}},
        {"removed, but not by the own renaming to here",
         false,
         "old",
         ItemIsFile | ItemRenamed | ItemCreated | OwnEvent,
         {"removed old"}},
        {"removed by this process, made anew by another, whose event is yet to come",
         false,
         "new",
         ItemIsFile | ItemRenamed | ItemRemoved | OwnEvent,
         {}},
        {"removed, but not by the own write",
         false,
         "old",
         ItemIsFile | ItemModified | OwnEvent,
         {"removed old"}},
        {"information", false, "same", ItemIsFile | ItemFinderInfoMod, {"info same"}},
    };
    for (const auto &event : cases) {
        SCOPED_TRACE(event.name);
        runScript(folder.path(), "rm -rf * .[!.]*; echo 1 > old; echo 1 > same");
        options.deep = event.deep;
        Watching watching(folder.path(), options);
        runScript(folder.path(), "rm old; echo 1 > new; mkdir d .Trashes; echo 1 > d/f; echo 1 > .hidden; "
                                 "echo 1 > .Trashes/f");
        stream->deliver(event.path, event.flags);
        ASSERT_TRUE(flushed(*watching.watcher));
        EXPECT_THAT(watching.recorder->takeLines(), UnorderedElementsAreArray(event.heard));
    }
}

TEST_F(WatcherOnFakeStream, ForeignChangeBehindAnOwnOneIsReported)
{
    runScript(folder.path(), "echo 1 > a");
    Watching watching(folder.path(), options);
    // The own event's comparison already sees what the child wrote; the child's event comes later.
    runScript(folder.path(), "echo 2 > a");
    stream->deliver("a", ItemIsFile | ItemModified | OwnEvent);
    ASSERT_TRUE(flushed(*watching.watcher));
    EXPECT_THAT(watching.recorder->takeLines(), IsEmpty());
    stream->deliver("a", ItemIsFile | ItemModified);
    stream->deliver("a", ItemIsFile | ItemModified);
    ASSERT_TRUE(flushed(*watching.watcher));
    EXPECT_THAT(watching.recorder->takeLines(), ElementsAre("updated a"));

    // Removed and made by this process, removed by the child.
    watching.watcher->performOwnChange(folder.pathText("c"),
                                       [this] { runScript(folder.path(), "echo 1 > c"); });
    runScript(folder.path(), "rm c");
    stream->deliver("c", ItemIsFile | ItemRemoved | ItemCreated | OwnEvent);
    ASSERT_TRUE(flushed(*watching.watcher));
    EXPECT_THAT(watching.recorder->takeLines(), ElementsAre("removed c"));

    // Made and removed by this process, made anew by the child.
    for (const quint32 own : {ItemIsFile | ItemCreated, ItemIsFile | ItemCreated | ItemRemoved}) {
        runScript(folder.path(), "rm -f b");
        stream->deliver("b", ItemIsFile | ItemRemoved);
        ASSERT_TRUE(flushed(*watching.watcher));
        watching.recorder->takeLines();
        runScript(folder.path(), "echo 1 > b");
        stream->deliver("b", own | OwnEvent);
        stream->deliver("b", ItemIsFile | ItemCreated);
        ASSERT_TRUE(flushed(*watching.watcher));
        EXPECT_THAT(watching.recorder->takeLines(), ElementsAre("added b"));
    }
}

TEST_F(WatcherOnFakeStream, WhatAStrangerDoesDuringAnOwnChangeIsReported)
{
    struct Case
    {
        const char *own; ///< makes .own, which is put at "a"; "" for nothing, "rm" for a removal
        const char *stranger;
        std::vector<std::string> heard;
    };
    for (const Case &c :
         {Case{"echo own > .own", "true", {}},
          Case{"echo own > .own", "echo theirs > .theirs; mv .theirs a", {"updated a"}},
          Case{"echo own > .own", "echo theirs > a", {"updated a"}},
          Case{"echo own > .own", "rm a", {"removed a"}}, Case{"rm", "true", {}},
          Case{"rm", "echo theirs > a", {"added a"}}, Case{"", "true", {}},
          Case{"", "echo theirs > .theirs; mv .theirs a", {"updated a"}}, Case{"", "rm a", {"removed a"}}}) {
        SCOPED_TRACE(std::string(c.own) + " | " + c.stranger);
        runScript(folder.path(), "rm -f a .own; echo before > a");
        options.noticesReplacements = true;
        Watching watching(folder.path(), options);
        {
            OwnChange own = watching.watcher->beginOwnChange(folder.pathText("a"));
            if (std::string(c.own) == "rm") {
                std::filesystem::remove(folder.path("a"));
                own.hasRemoved();
            } else if (*c.own) {
                runScript(folder.path(), c.own);
                const int file = ::open(folder.path(".own").c_str(), O_RDONLY | O_CLOEXEC);
                std::filesystem::rename(folder.path(".own"), folder.path("a"));
                own.hasPut(file);
                ::close(file);
            }
            runScript(folder.path(), c.stranger);
            stream->deliver("a", ItemIsFile | ItemModified); // looked at when the change has ended
            ASSERT_TRUE(flushed(*watching.watcher));
            EXPECT_THAT(watching.recorder->takeLines(), IsEmpty());
        }
        ASSERT_TRUE(flushed(*watching.watcher));
        std::vector<std::string> heard = watching.recorder->takeLines();
        if (c.heard.empty() && *c.own && heard == std::vector<std::string>{"updated a"})
            heard.clear(); // an event that says to be another's is believed
        EXPECT_THAT(heard, testing::ElementsAreArray(c.heard));
    }
}

TEST_F(WatcherOnFakeStream, WhatThisProcessChangedIsMissedInAnotherFolder)
{
    runScript(folder.path(), "mkdir w; echo 1 > w/a; echo 1 > w/b");
    Watching watching(folder.path("w"), options);
    runScript(folder.path(), "mv w away; mkdir w; echo his > w/c"); // behind own changes
    stream->deliver("a", ItemIsFile | ItemRenamed | ItemRemoved | ItemCreated | OwnEvent);
    stream->deliver("c", ItemIsFile | ItemCreated | OwnEvent);
    ASSERT_TRUE(flushed(*watching.watcher));
    stream->deliver("", RootChanged);
    ASSERT_TRUE(flushed(*watching.watcher));
    EXPECT_THAT(watching.recorder->takeLines(),
                testing::UnorderedElementsAre("removed a", "removed b", "added c"));
}

TEST_F(WatcherOnFakeStream, LooksAgainWhereItIsAskedTo)
{
    Watching watching(folder.path(), options);
    runScript(folder.path(), "echo 1 > a; mkdir d; echo 1 > d/b; echo 1 > d/c");
    watching.watcher->checkChangesAtPaths(
        {QStringLiteral("/nowhere"), folder.pathText("a"), folder.pathText("d/b")});
    ASSERT_TRUE(flushed(*watching.watcher));
    EXPECT_THAT(watching.recorder->takeLines(), testing::UnorderedElementsAre("added a", "added d/b"));
    watching.watcher->forceChangesCheckingAtPath(folder.pathText("d"));
    ASSERT_TRUE(flushed(*watching.watcher));
    EXPECT_THAT(watching.recorder->takeLines(), ElementsAre("added d/c"));
}

TEST_F(WatcherOnFakeStream, ChecksNetworkVolumesEveryThirtySeconds)
{
    for (const char *type : {"ext4", "nfs", "smbfs", "smb2", "cifs", "AvidUnityISIS"}) {
        SCOPED_TRACE(type);
        fileSystem = QString::fromLatin1(type);
        intervals.clear();
        runScript(folder.path(), "rm -f *");
        Watching watching(folder.path(), options);
        const bool isLocal = *fileSystem == QStringLiteral("ext4") || *fileSystem == QStringLiteral("nfs");
        if (isLocal) {
            EXPECT_THAT(intervals, IsEmpty());
            continue;
        }
        EXPECT_THAT(intervals, ElementsAre(std::chrono::seconds(30)));
        runScript(folder.path(), "echo 1 > a");
        tick();
        ASSERT_TRUE(flushed(*watching.watcher));
        EXPECT_THAT(watching.recorder->takeLines(), ElementsAre("added a"));
        watching.watcher->stopWatching();
        EXPECT_FALSE(tick) << "the timer outlives the watching";
    }
}

TEST_F(WatcherOnFakeStream, WatchesADirectoryBeforeItReadsIt)
{
    runScript(folder.path(), "mkdir -p a/b .h/c; ln -s a l");
    watchError.assign(ENOSPC, std::system_category());
    Watching watching(folder.path(), options);
    EXPECT_THAT(stream->watched(), ElementsAre(folder.path() + "/a", folder.path() + "/a/b"));
    // Out of watches: said for each directory, and the contents are known all the same.
    const std::string error = "error " + watchError.message();
    EXPECT_THAT(watching.recorder->takeLines(), ElementsAre(error, error));
    EXPECT_THAT(inventoried(*watching.watcher), ElementsAre("a", "a/b", "l"));
}

TEST_F(WatcherOnFakeStream, AsksTheHandlerWhetherAnEnumerationGoesOn)
{
    runScript(folder.path(), "mkdir a b");
    Watching watching(folder.path(), options);
    ASSERT_TRUE(watching.watcher->fileEnumerationErrorHandler());
    int asked = 0;
    for (const bool goesOn : {false, true}) {
        watching.watcher->setFileEnumerationErrorHandler([&](const QUrl &, const std::error_code &error) {
            EXPECT_EQ(error.value(), ENOSPC);
            ++asked;
            return goesOn;
        });
        stream->watchError.assign(ENOSPC, std::system_category());
        watching.watcher->forceChangesCheckingAtPath(watching.watcher->folderPath());
        ASSERT_TRUE(flushed(*watching.watcher));
        EXPECT_EQ(asked, goesOn ? 3 : 1);
    }
    watching.watcher->stopWatching();
    EXPECT_FALSE(watching.watcher->fileEnumerationErrorHandler());
}

TEST_F(WatcherOnFakeStream, ASecondStartLosesNothing)
{
    Watching watching(folder.path(), options);
    for (int i = 0; i < 20; ++i) {
        const std::string name = "f" + std::to_string(i);
        runScript(folder.path(), "echo 1 > " + name);
        stream->deliver(name, ItemIsFile | ItemCreated);
        QCoreApplication::processEvents();
        ASSERT_TRUE(watching.watcher->startWatching());
    }
    ASSERT_TRUE(flushed(*watching.watcher));
    EXPECT_EQ(watching.recorder->replayed(), onDisk(folder.path()));
    EXPECT_THAT(watching.recorder->contradictions(), IsEmpty());
}

TEST_F(WatcherOnFakeStream, SaysWhyItCanNotStart)
{
    runScript(folder.path(), "echo 1 > file; ln -s nowhere dangling");
    const QString path = QString::fromStdString(folder.path());
    const auto start = [](const QString &where, WatchFolderError &error,
                          const WatchFolderEnvironment &environment) {
        VRXWatchFolder watcher(where, {}, false, 1.0, {}, {}, environment);
        const bool started = watcher.startWatching(&error);
        EXPECT_FALSE(watcher.isWatchingPath());
        return started;
    };
    const struct
    {
        QString path;
        int code;
    } cases[] = {
        {path + QStringLiteral("/missing"), 1001},    {path + QStringLiteral("/file"), 1002},
        {path + QStringLiteral("/file/below"), 1001}, {path + QStringLiteral("/dangling"), 1001},
        {path + u'/' + QString(4096, u'x'), 1001},    {path + u'/' + QChar(0xD800), 1001},
        {QStringLiteral("relative"), 1001},           {QString(), 1001},
    };
    for (const auto &bad : cases) {
        SCOPED_TRACE(qUtf8Printable(bad.path.left(100)));
        WatchFolderError error;
        EXPECT_FALSE(start(bad.path, error, WatchFolderEnvironment::system()));
        EXPECT_EQ(error.code, bad.code);
        EXPECT_EQ(error.domain, QStringLiteral("WatchFolderError"));
        EXPECT_TRUE(error.description.contains(bad.path));
    }

    WatchFolderError error;
    startError.assign(ENOSPC, std::system_category());
    EXPECT_FALSE(start(path, error, options.environment));
    EXPECT_EQ(error.code, 1003);
    EXPECT_EQ(error.reason, QString::fromStdString(startError.message()));
}

TEST_F(WatcherOnFakeStream, CanNotStartOnAnUnreadableFolder)
{
    runScript(folder.path(), "chmod 755 .; mkdir closed; chmod 0 closed");
    const std::string closed = folder.path() + "/closed";
    const OtherUser nobody(65534);
    VRXWatchFolder watcher(QString::fromStdString(closed));
    WatchFolderError error;
    EXPECT_FALSE(watcher.startWatching(&error));
    EXPECT_EQ(error.code, 1003);
}

} // namespace
