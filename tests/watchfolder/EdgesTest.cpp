// SPDX-License-Identifier: MIT
#include "tests/support/ChildProcess.h"
#include "tests/support/OtherUser.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Wait.h"
#include "tests/watchfolder/Recorder.h"

#include <gmock/gmock.h>

#include <sys/mount.h>

#include <cstring>

using namespace vantle;
using namespace vantle::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr uid_t kNobody = 65534;

// Folders that are closed, hidden, linked to, mounted on, or another user's.
class WatcherAtTheEdges : public testing::TestWithParam<WatchBackend>
{
protected:
    void SetUp() override
    {
        if (const std::string reason = refusal(GetParam()); !reason.empty())
            GTEST_SKIP() << backendName(GetParam()).toStdString() << " is refused here: " << reason;
        runScript(outside.path(), "chmod 755 .; mkdir -p -m 755 p p/watched");
    }

    // What another process, root's where this is one, does in the folder that has all.
    void change(const std::string &script) const { runScript(outside.path(), script); }

    bool knowsWhatIsThere(Watching &watching) const
    {
        const bool knows = waitFor([&] {
            return inventoried(*watching.watcher) == onDisk(folder) &&
                   watching.recorder->replayed() == onDisk(folder);
        });
        EXPECT_EQ(inventoried(*watching.watcher), onDisk(folder));
        EXPECT_EQ(watching.recorder->replayed(), onDisk(folder));
        return knows;
    }

    TemporaryFolder outside;
    const std::string folder = outside.path() + "/p/watched";
};

TEST_P(WatcherAtTheEdges, LooksAgainBehindAClosedDoor)
{
    const struct
    {
        const char *name, *closed, *changed;
    } cases[] = {
        {"the folder", "p/watched", "echo 2 > p/watched/two; rm p/watched/three; touch -d @9 p/watched/one"},
        {"its parent", "p", "echo 2 > p/watched/two; rm p/watched/three"},
        {"a directory below", "p/watched/d", "echo 2 > p/watched/d/two; rm p/watched/d/three"},
        {"a directory above that", "p/watched/d", "echo 2 > p/watched/d/e/two; rm p/watched/d/e/three"},
        {"a directory that was made closed", "p/watched/new",
         "mkdir -m 700 p/watched/new; echo 1 > p/watched/new/one; mkdir p/watched/new/e"},
    };
    for (const auto &door : cases) {
        SCOPED_TRACE(door.name);
        change("rm -rf p/watched/*; cd p/watched; mkdir -p d/e; echo 1 | tee one three d/one d/three d/e/one "
               "d/e/three > all");
        const OtherUser nobody(kNobody);
        if (geteuid() != kNobody)
            GTEST_SKIP() << "only root can become somebody else";
        Watching watching(folder, {.backend = GetParam()});
        ASSERT_TRUE(watching.started);
        const std::string closed = door.closed;
        change("test ! -e " + closed + " || chmod 700 " + closed + "; " + door.changed);
        ASSERT_TRUE(flushed(*watching.watcher));
        change("chmod 755 " + closed);
        EXPECT_TRUE(knowsWhatIsThere(watching));
        change("echo 3 > " + closed + "/later; test ! -d p/watched/new || echo 3 > p/watched/new/e/later");
        EXPECT_TRUE(knowsWhatIsThere(watching));
        EXPECT_THAT(watching.recorder->contradictions(), IsEmpty());
    }
}

TEST_P(WatcherAtTheEdges, ReportsAnEmptyFileOfAnotherUser)
{
    const OtherUser nobody(kNobody);
    if (geteuid() != kNobody)
        GTEST_SKIP() << "only root can become somebody else";
    Watching watching(folder, {.backend = GetParam()});
    ASSERT_TRUE(watching.started);
    change("umask 077; flock p/watched/lock true");
    EXPECT_TRUE(waitFor([&] { return watching.recorder->has("added lock"); }));
    EXPECT_THAT(watching.recorder->takeLines(), ElementsAre("added lock"));
}

TEST_P(WatcherAtTheEdges, FollowsAFolderWhoseNameIsHidden)
{
    change("mkdir .hidden; echo 1 > .hidden/a");
    Watching watching(outside.path() + "/.hidden", {.backend = GetParam()});
    ASSERT_TRUE(watching.started);
    change("mv .hidden away; mkdir .hidden; echo 1 > .hidden/b; echo 1 > .hidden/.c");
    ASSERT_TRUE(flushed(*watching.watcher));
    EXPECT_THAT(watching.recorder->replayed(), ElementsAre("b"));
    change("rm -r .hidden");
    ASSERT_TRUE(flushed(*watching.watcher));
    EXPECT_TRUE(watching.recorder->has("unreachable"));
}

TEST_P(WatcherAtTheEdges, FollowsEachLinkOnTheWay)
{
    change("mkdir -p x rel/41/w rel/42/w; echo 1 > rel/41/w/a; echo 1 > rel/42/w/b; "
           "ln -s ../rel/41 x/latest; ln -s x/latest current");
    Watching watching(outside.path() + "/current/w", {.backend = GetParam()});
    ASSERT_TRUE(watching.started);
    EXPECT_THAT(inventoried(*watching.watcher), ElementsAre("a"));
    const struct
    {
        const char *change, *found;
    } steps[] = {
        {"ln -s ../rel/42 new; mv -T new x/latest", "b"},
        {"rm x/latest; ln -s ../rel/41 x/latest", "a"},
        {"mkdir y; ln -s ../rel/42 y/latest; ln -s y/latest new; mv -T new current", "b"},
        {"mv rel/42 rel/43; mkdir -p rel/42/w; echo 1 > rel/42/w/c", "c"},
    };
    for (const auto &step : steps) {
        SCOPED_TRACE(step.change);
        change(step.change);
        ASSERT_TRUE(flushed(*watching.watcher));
        EXPECT_THAT(watching.recorder->replayed(), ElementsAre(step.found));
    }
}

TEST_P(WatcherAtTheEdges, SeesThatADirectoryBelowIsMountedOn)
{
    change("mkdir -p p/watched/a/b 'p/watched/a c'; echo 1 > p/watched/a/b/old");
    Watching watching(folder, {.backend = GetParam()});
    ASSERT_TRUE(watching.started);
    for (const char *name : {"/a/b", "/a c"}) {
        SCOPED_TRACE(name);
        const std::string point = folder + name;
        if (mount("vantle", point.c_str(), "tmpfs", 0, nullptr) != 0)
            GTEST_SKIP() << "mounting is refused here: " << std::strerror(errno);
        runScript(point, "mkdir d; echo 1 > d/new");
        EXPECT_TRUE(knowsWhatIsThere(watching));
        runScript(point, "echo 1 > d/later"); // it is watched, too
        EXPECT_TRUE(knowsWhatIsThere(watching));
        umount2(point.c_str(), MNT_DETACH);
        EXPECT_TRUE(knowsWhatIsThere(watching));
    }
    change("echo 1 > p/watched/a/b/after");
    EXPECT_TRUE(knowsWhatIsThere(watching));
    EXPECT_THAT(watching.recorder->contradictions(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, WatcherAtTheEdges, testing::Values(WatchBackend::Fanotify, WatchBackend::Inotify),
                         [](const auto &info) { return backendName(info.param).toStdString(); });

} // namespace
