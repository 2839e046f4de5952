// SPDX-License-Identifier: MIT
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Wait.h"
#include "tests/watchfolder/FakeEventStream.h"
#include "tests/watchfolder/Recorder.h"
#include "watchfolder/SharedFolderEventStream.h"

#include <gmock/gmock.h>

#include <sys/mount.h>
#include <unistd.h>

using namespace vantle;
using namespace vantle::test;
using namespace std::chrono_literals;
using testing::IsEmpty;

namespace {

TEST(SharedFileSystemTest, IsToldByItsType)
{
    for (const char *type :
         {"nfs", "smbfs", "smb2", "cifs", "fuse", "9p", "ceph", "afs", "lustre", "gpfs", "AvidUnityISIS"})
        EXPECT_TRUE(isSharedFileSystem(QString::fromLatin1(type))) << type;
    for (const char *type : {"ext4", "tmpfs", "fuseblk", "overlay", "0x9fa0", ""})
        EXPECT_FALSE(isSharedFileSystem(QString::fromLatin1(type))) << type;
}

// The events say nothing of what happens in the folder.
class WatcherOfASharedFolder : public testing::Test
{
protected:
    WatcherOfASharedFolder()
    {
        options.environment.startStream = [this](const auto &configuration, WatchBackend,
                                                 std::error_code &error) {
            auto stream = std::make_shared<SharedFolderEventStream>(
                configuration, std::make_shared<FakeEventStream>(configuration), intervals);
            error = stream->start();
            return stream;
        };
        options.environment.fileSystemTypeName = [](const QString &) { return QStringLiteral("nfs"); };
    }

    const TemporaryFolder folder;
    SharedFolderEventStream::Intervals intervals;
    Watching::Options options;
};

TEST_F(WatcherOfASharedFolder, ScansItWhenItChanged)
{
    intervals = {.look = 20ms, .scan = 24h};
    runScript(folder.path(), "echo 1 > old");
    const Watching watching(folder.path(), options);
    ASSERT_TRUE(watching.started);
    EXPECT_TRUE(watching.watcher->streamDescription().contains(QStringLiteral("nfs")));
    runScript(folder.path(), "echo 1 > new; rm old");
    EXPECT_TRUE(waitFor([&] { return watching.recorder->has("added new"); }));
    EXPECT_TRUE(waitFor([&] { return watching.recorder->has("removed old"); }));
    runScript(folder.path(), "mv new newer");
    EXPECT_TRUE(waitFor([&] { return watching.recorder->has("added newer"); }));
}

TEST_F(WatcherOfASharedFolder, ScansItNowAndThenInAnyCase)
{
    intervals = {.look = 20ms, .scan = 50ms};
    runScript(folder.path(), "mkdir d; echo 1 > d/old");
    const Watching watching(folder.path(), options);
    ASSERT_TRUE(watching.started);
    runScript(folder.path(), "echo 2 > d/old; echo 1 > d/new");
    EXPECT_TRUE(waitFor([&] { return watching.recorder->has("added d/new"); }));
    EXPECT_TRUE(waitFor([&] { return watching.recorder->has("updated d/old"); }));
}

TEST_F(WatcherOfASharedFolder, ScansItTheLessTheLongerThatTakes)
{
    const struct
    {
        std::chrono::milliseconds comparison;
        bool scans;
    } cases[] = {{0ms, true}, {24h, false}};
    for (const auto &slow : cases) {
        std::atomic<int> scans = 0;
        std::atomic<bool> ended = false;
        const FileSystemEventStream::Configuration configuration{
            .folder = folder.path(), .callback = [&scans](const auto &) { ++scans; }};
        SharedFolderEventStream stream(configuration, std::make_shared<FakeEventStream>(configuration),
                                       {.look = 5ms, .scan = 10ms});
        stream.comparisonTook(slow.comparison);
        ASSERT_FALSE(stream.start());
        QTimer::singleShot(300ms, [&ended] { ended = true; });
        ASSERT_TRUE(waitFor([&] { return ended || scans > 0; }));
        EXPECT_EQ(scans > 0, slow.scans);
        stream.stop();
        const int atTheEnd = scans;
        QCoreApplication::processEvents();
        EXPECT_EQ(scans, atTheEnd);
    }
}

/// A file system of FUSE that shows another folder, whose changes its kernel side is not told of.
class BoundFolder
{
public:
    BoundFolder(const std::string &server, const std::string &mountPoint) : m_mountPoint(mountPoint)
    {
        if (access("/dev/fuse", R_OK | W_OK) != 0 || access("/usr/bin/bindfs", X_OK) != 0)
            return;
        ChildProcess bind({"/usr/bin/bindfs", server, mountPoint}, {});
        m_isMounted = bind.finish() == 0;
    }
    ~BoundFolder()
    {
        if (m_isMounted)
            umount2(m_mountPoint.c_str(), MNT_DETACH);
    }
    BoundFolder(const BoundFolder &) = delete;
    BoundFolder &operator=(const BoundFolder &) = delete;

    [[nodiscard]] bool isMounted() const { return m_isMounted; }

private:
    const std::string m_mountPoint;
    bool m_isMounted = false;
};

class WatcherOfABoundFolder : public testing::TestWithParam<WatchBackend>
{
};

TEST_P(WatcherOfABoundFolder, HearsWhatTheServerChanges)
{
    const TemporaryFolder outside;
    runScript(outside.path(), "mkdir server mount; echo 1 > server/old; echo 1 > server/rewritten");
    const std::string folder = outside.path() + "/mount";
    const BoundFolder bound(outside.path() + "/server", folder);
    if (!bound.isMounted())
        GTEST_SKIP() << "needs bindfs, /dev/fuse and the right to mount";
    EXPECT_EQ(VRXWatchFolder::fsTypeNameFromPath(QString::fromStdString(folder)), QStringLiteral("fuse"));
    Watching watching(folder, {.backend = GetParam()});
    if (watching.error.code == WatchFolderError::NoEventStream)
        GTEST_SKIP() << watching.error.reason.toStdString();
    ASSERT_TRUE(watching.started);

    runScript(folder, "echo 1 > local"); // this machine's own come as events
    ASSERT_TRUE(flushed(*watching.watcher));
    EXPECT_TRUE(watching.recorder->has("added local"));

    // An update in place comes with the scan, and within half a minute if nothing else asks for one.
    runScript(outside.path(), "echo 22 > server/rewritten; echo 1 > server/new");
    EXPECT_TRUE(waitFor([&] { return watching.recorder->has("added new"); }, 10s));
    EXPECT_TRUE(waitFor([&] { return watching.recorder->has("updated rewritten"); }, 35s));
    runScript(outside.path(), "echo 333 > server/new; mv server/new server/newer; rm server/old");
    EXPECT_TRUE(waitFor(
        [&] {
            return watching.recorder->has("added newer") && watching.recorder->has("removed new") &&
                   watching.recorder->has("removed old");
        },
        10s));
    EXPECT_THAT(watching.recorder->contradictions(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, WatcherOfABoundFolder,
                         testing::Values(WatchBackend::Fanotify, WatchBackend::Inotify),
                         [](const auto &info) { return backendName(info.param).toStdString(); });

} // namespace
