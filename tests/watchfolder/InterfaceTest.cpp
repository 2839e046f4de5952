// SPDX-License-Identifier: MIT
#include "base/RunLoop.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Wait.h"
#include "tests/watchfolder/Recorder.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

using namespace vantle;
using namespace vantle::test;

namespace {

std::uint64_t nanoseconds(FileTime time)
{
    return static_cast<std::uint64_t>(time.time_since_epoch().count());
}

TEST(VRXWatchFolderTest, TellsWhatItKnowsOfEachItem)
{
    const TemporaryFolder folder;
    runScript(folder.path(),
              "printf 12345 > 'a %41.json'; ln 'a %41.json' same.json; mkdir d; : > d/x; touch -d @1.5 d/x");
    const Watching watching(folder.path(), {});
    const VRXWatchFolder &watcher = *watching.watcher;

    const QHash<QString, VRXWatchFolderItem> items = watcher.pathToItemsDictionary();
    const QHash<QString, QUrl> urls = watcher.URLsDictionary();
    EXPECT_EQ(QSet<QString>(items.keyBegin(), items.keyEnd()), QSet<QString>(urls.keyBegin(), urls.keyEnd()));
    for (const char *name : {"a %41.json", "same.json", "d", "d/x"}) {
        SCOPED_TRACE(name);
        const QString path = folder.pathText(name);
        struct stat status = {};
        ASSERT_EQ(::stat(folder.path(name).c_str(), &status), 0);
        ASSERT_TRUE(items.contains(path));
        // As the inventory has it, by its path, and read anew.
        for (const VRXWatchFolderItem &item :
             {*items.find(path), *watcher.itemAtPath(path), VRXWatchFolderItem(QUrl::fromLocalFile(path))}) {
            EXPECT_EQ(item.path(), path);
            EXPECT_EQ(item.URL(), QUrl::fromLocalFile(path));
            EXPECT_EQ(item.URL(), urls[path]);
            EXPECT_EQ(item.isDirectory(), S_ISDIR(status.st_mode));
            EXPECT_EQ(item.size(), static_cast<quint64>(status.st_size));
            EXPECT_EQ(item.inode(), status.st_ino);
            EXPECT_EQ(nanoseconds(*item.lastModificationDate()),
                      static_cast<std::uint64_t>(status.st_mtim.tv_sec) * 1'000'000'000 +
                          static_cast<std::uint64_t>(status.st_mtim.tv_nsec));
            EXPECT_EQ(item.uniqueID() == items.find(folder.pathText("same.json"))->uniqueID(),
                      status.st_nlink == 2 && !item.isDirectory());
        }
    }
    EXPECT_FALSE(watcher.itemAtPath(QStringLiteral("/etc/passwd")));
    EXPECT_FALSE(watcher.hasItemAtPath(folder.pathText("missing")));
    const VRXWatchFolderItem missing(QUrl::fromLocalFile(folder.pathText("missing")));
    EXPECT_FALSE(missing.lastModificationDate());
    EXPECT_EQ(missing.inode(), 0u);
}

TEST(VRXWatchFolderTest, ReadsLargeFoldersWhole)
{
    const TemporaryFolder folder;
    runScript(folder.path(), "seq 5000 | xargs touch"); // more than are read at once, by two threads
    const Watching watching(folder.path(), {});
    EXPECT_EQ(inventoried(*watching.watcher), onDisk(folder.path()));
    EXPECT_TRUE(watching.watcher->itemAtPath(folder.pathText("4999"))->lastModificationDate());
}

TEST(VRXWatchFolderTest, NamesFileSystems)
{
    const auto nameOf = [](const char *path) {
        return VRXWatchFolder::fsTypeNameFromPath(QString::fromLatin1(path)).value_or(QStringLiteral("none"));
    };
    EXPECT_EQ(nameOf("/proc"), QStringLiteral("0x9fa0")); // not one that it knows
    EXPECT_EQ(nameOf("/nowhere"), QStringLiteral("none"));
    EXPECT_EQ(nameOf(""), QStringLiteral("none"));
}

TEST(WatchFolderTimer, TicksOnTheMainThreadUntilItIsLetGo)
{
    const auto startTimer = WatchFolderEnvironment::system().startTimer;
    int ticks = 0;
    int neverTicks = 0;
    auto timer = startTimer(std::chrono::milliseconds(1), [&] { ++ticks; });
    startTimer(std::chrono::milliseconds(1), [&] { ++neverTicks; }).reset(); // before it was made
    ASSERT_TRUE(waitFor([&] { return ticks >= 3; }));
    const auto letGo = [](auto &gone) {
        gone.reset();
        bool isGone = false;
        RunLoop::main()->post([&] { isGone = true; });
        return waitFor([&] { return isGone; });
    };
    ASSERT_TRUE(letGo(timer));
    const int atTheEnd = ticks;
    int laterTicks = 0;
    auto later = startTimer(std::chrono::milliseconds(1), [&] { ++laterTicks; });
    ASSERT_TRUE(waitFor([&] { return laterTicks >= 3; }));
    ASSERT_TRUE(letGo(later));
    EXPECT_EQ(ticks, atTheEnd);
    EXPECT_EQ(neverTicks, 0);
}

} // namespace
