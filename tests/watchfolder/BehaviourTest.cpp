// SPDX-License-Identifier: MIT
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Wait.h"
#include "tests/watchfolder/Recorder.h"

#include <gmock/gmock.h>

#include <sys/mount.h>

#include <algorithm>
#include <fstream>

using namespace vantle;
using namespace vantle::test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

namespace {

// What other processes do in a folder, and what a client of the watcher hears of it.
class WatcherOnBackend : public testing::TestWithParam<WatchBackend>
{
protected:
    void SetUp() override
    {
        if (const std::string reason = refusal(GetParam()); !reason.empty())
            GTEST_SKIP() << backendName(GetParam()).toStdString() << " is refused here: " << reason;
        std::filesystem::create_directory(folder);
    }

    std::vector<std::string> linesAfter(Watching &watching, const std::string &script)
    {
        runScript(folder, script);
        EXPECT_TRUE(flushed(*watching.watcher));
        return watching.recorder->takeLines();
    }

    TemporaryFolder outside;
    const std::string folder = outside.path() + "/watched";
};

struct Story
{
    const char *name;
    bool deep;
    const char *before;
    const char *change;
    std::vector<std::string> heard;
};

const std::vector<Story> stories = {
    {"a new file", false, "", "echo 1 > a", {"added a"}},
    {"created and deleted", false, "", "echo 1 > a; rm a", {}},
    {"one update per window", false, "echo 1 > a", "echo 2 > a; echo 3 >> a; echo 4 > a", {"updated a"}},
    {"truncated", false, "echo 1 > a", "truncate -s 0 a", {"updated a"}},
    {"same date", false, "touch -d @1000 a", "echo 2 > a; touch -d @1000 a", {}},
    {"mode only", false, "echo 1 > a", "chmod 600 a", {}},
    {"renamed", false, "echo 1 > a", "mv a b", {"added b", "removed a"}},
    {"renamed in a chain", false, "echo 1 > a", "mv a b; mv b c; mv c d", {"added d", "removed a"}},
    {"exchanged",
     false,
     "touch -d @1 a; touch -d @2 b",
     "mv a t; mv b a; mv t b",
     {"updated a", "updated b"}},
    {"saved by renaming into place", false, "echo 1 > a", "echo 2 > .a.tmp; mv .a.tmp a", {"updated a"}},
    {"an editor's backup dance", false, "echo 1 > a", "mv a a~; echo 2 > a; rm a~", {"updated a"}},
    {"hidden ones",
     true,
     "",
     "echo 1 > .a; mkdir .d; echo 1 > .d/a; mkdir -p d/.e; echo 1 > d/.e/a",
     {"added d"}},
    {"shown by renaming", true, "mkdir .d; echo 1 > .d/a", "mv .d d", {"added d", "added d/a"}},
    {"links and a pipe",
     false,
     "echo 1 > a",
     "ln a b; ln -s nowhere c; mkfifo d",
     {"added b", "added c", "added d"}},
    {"a file linked out and in", false, "", "echo 1 > ../x; ln ../x a; rm ../x", {"added a"}},
    {"not below when not deep", false, "mkdir d", "echo 1 > d/a; mkdir e", {"added e"}},
    {"a tree at once",
     true,
     "",
     "mkdir -p a/b/c; echo 1 > a/b/c/f",
     {"added a", "added a/b", "added a/b/c", "added a/b/c/f"}},
    {"moved in with contents",
     true,
     "mkdir -p ../x/y; echo 1 > ../x/y/f",
     "mv ../x a",
     {"added a", "added a/y", "added a/y/f"}},
    {"moved out",
     true,
     "mkdir -p a/b; echo 1 > a/b/f",
     "mv a ../x; echo 2 > ../x/b/f; echo 3 > ../x/b/g",
     {"removed a", "removed a/b", "removed a/b/f"}},
    {"written below a renamed directory",
     true,
     "mkdir -p a/b; echo 1 > a/b/f",
     "mv a c; echo 2 > c/b/g",
     {"added c", "added c/b", "added c/b/f", "added c/b/g", "removed a", "removed a/b", "removed a/b/f"}},
    {"deleted as a tree",
     true,
     "mkdir -p a/b; echo 1 > a/b/f",
     "rm -r a",
     {"removed a", "removed a/b", "removed a/b/f"}},
    {"a directory becomes a file",
     true,
     "mkdir a; echo 1 > a/f; touch -d @1 a",
     "rm -r a; echo 1 > a",
     {"updated a", "removed a/f"}},
    {"a directory becomes a link to where it went",
     true,
     "mkdir -p a/b; echo 1 > a/b/f",
     "mv a c; ln -s c a",
     {"updated a", "added c", "added c/b", "added c/b/f", "removed a/b", "removed a/b/f"}},
    {"a file becomes a directory",
     true,
     "touch -d @1 a",
     "rm a; mkdir a; echo 1 > a/f",
     {"updated a", "added a/f"}},
    {"a name that is not UTF-8",
     true,
     "",
     "f=$(printf 'a\\377'); echo 1 > $f; mkdir d; echo 1 > d/$f",
     {"added a\xff", "added d", "added d/a\xff"}},
};

TEST_P(WatcherOnBackend, TellsWhatHappened)
{
    for (const Story &story : stories) {
        SCOPED_TRACE(story.name);
        std::filesystem::remove_all(folder);
        std::filesystem::create_directory(folder);
        runScript(folder, story.before);
        Watching watching(folder, {.backend = GetParam(), .deep = story.deep});
        ASSERT_TRUE(watching.started);
        EXPECT_EQ(watching.watcher->backend(), GetParam());
        auto lines = linesAfter(watching, story.change);
        // A directory's own date may or may not have been read before its entries changed.
        std::erase(lines, "updated d");
        EXPECT_THAT(lines, UnorderedElementsAreArray(story.heard));
        EXPECT_EQ(watching.recorder->replayed(), inventoried(*watching.watcher));
        std::filesystem::remove_all(outside.path() + "/x");
    }
}

TEST_P(WatcherOnBackend, HoldsANewFileUntilItsWriterCloses)
{
    runScript(folder, "echo 1 > known");
    Watching watching(folder, {.backend = GetParam()});
    ChildProcess writer(
        {"/bin/sh", "-c", "exec 3> slow; echo opened; read l; echo half >&3; echo written; read l"}, folder);
    for (const char *state : {"opened", "written"}) {
        ASSERT_EQ(writer.receive(), state);
        ASSERT_TRUE(flushed(*watching.watcher));
        EXPECT_THAT(watching.recorder->takeLines(), IsEmpty()) << state;
        writer.send("");
    }
    writer.finish();
    ASSERT_TRUE(flushed(*watching.watcher));
    EXPECT_THAT(watching.recorder->takeLines(), ElementsAre("added slow"));

    // A known file that somebody keeps open, a log, is followed all the same.
    ChildProcess logger({"/bin/sh", "-c", "exec 3>> known; echo 2 >&3; echo written; read l"}, folder);
    ASSERT_EQ(logger.receive(), "written");
    ASSERT_TRUE(flushed(*watching.watcher));
    EXPECT_THAT(watching.recorder->takeLines(), ElementsAre("updated known"));
}

TEST_P(WatcherOnBackend, FindsTheFolderAgain)
{
    const struct
    {
        const char *name, *away, *back;
        bool somebodyIsInside = false;
    } cases[] = {
        {"renamed", "mv watched w", "mv w watched"},
        {"removed", "rm -r watched", "mkdir watched; echo 1 > watched/a"},
        {"removed while somebody is in it", "rm -r watched", "mkdir watched; echo 1 > watched/a", true},
        {"replaced by a file", "mv watched w; echo 1 > watched", "rm watched; mv w watched"},
        {"an ancestor is renamed", "mv ../p ../p2", "mv ../p2 ../p"},
    };
    for (const auto &way : cases) {
        SCOPED_TRACE(way.name);
        const std::string parent = outside.path() + "/p";
        const std::string path = parent + "/watched";
        std::filesystem::remove_all(parent);
        std::filesystem::create_directories(path);
        runScript(path, "echo 1 > a");
        Watching watching(path, {.backend = GetParam()});
        ASSERT_TRUE(watching.started);
        ChildProcess inside({"/bin/sh", "-c", "read l"}, way.somebodyIsInside ? path : outside.path());
        runScript(parent, way.away);
        ASSERT_TRUE(flushed(*watching.watcher));
        EXPECT_THAT(watching.recorder->takeLines(), ElementsAre("unreachable", "removed a"));

        const std::string movedParent = parent + "2";
        runScript(std::filesystem::exists(parent) ? parent : movedParent, way.back);
        ASSERT_TRUE(waitFor([&] { return watching.recorder->has("added a"); }));
        watching.recorder->takeLines();
        runScript(path, "echo 1 > b");
        ASSERT_TRUE(flushed(*watching.watcher));
        EXPECT_THAT(watching.recorder->takeLines(), ElementsAre("added b"));
    }
}

TEST_P(WatcherOnBackend, FollowsALinkThatIsPointedElsewhere)
{
    runScript(outside.path(), "mkdir one two; echo 1 > one/a; echo 1 > two/b; ln -s one link");
    Watching watching(outside.path() + "/link", {.backend = GetParam()});
    ASSERT_TRUE(watching.started);
    for (const char *point : {"ln -s two new; mv -T new link", "rm link; ln -s one link"}) {
        watching.recorder->takeLines();
        runScript(outside.path(), point);
        ASSERT_TRUE(flushed(*watching.watcher));
        EXPECT_EQ(watching.recorder->replayed(), onDisk(outside.path() + "/link"));
        EXPECT_EQ(watching.recorder->takeLines().size(), 2U);
    }
}

TEST_P(WatcherOnBackend, SeesThatTheFolderIsMountedOver)
{
    runScript(folder, "echo 1 > a");
    Watching watching(folder, {.backend = GetParam()});
    if (mount("vantle", folder.c_str(), "tmpfs", 0, nullptr) != 0)
        GTEST_SKIP() << "mounting is refused here: " << std::strerror(errno);
    std::ofstream(folder + "/b") << "1";
    EXPECT_TRUE(
        waitFor([&] { return watching.recorder->has("removed a") && watching.recorder->has("added b"); }));
    umount2(folder.c_str(), MNT_DETACH);
    EXPECT_TRUE(
        waitFor([&] { return watching.recorder->has("removed b") && watching.recorder->has("added a"); }));
    EXPECT_THAT(watching.recorder->contradictions(), IsEmpty());
}

TEST_P(WatcherOnBackend, FindsEveryFileOfABurstOfDirectories)
{
    Watching watching(folder, {.backend = GetParam()});
    runScript(folder, "for a in 1 2 3 4 5; do"
                      "  for b in 1 2 3 4; do for c in 1 2 3 4 5; do for d in 1 2 3 4 5; do"
                      "    echo $a/$b/$c/$d; done; done; done | xargs mkdir -p;"
                      "  for d in $a/*/*/*; do echo 1 > $d/f; done; for c in $a/*/*; do echo 1 > $c/g; done;"
                      "done");
    ASSERT_TRUE(flushed(*watching.watcher));
    EXPECT_EQ(inventoried(*watching.watcher), onDisk(folder));
    EXPECT_EQ(inventoried(*watching.watcher).size(), 5U + 20 + 100 + 500 + 500 + 100);
    EXPECT_EQ(watching.recorder->replayed(), onDisk(folder));
    EXPECT_THAT(watching.recorder->contradictions(), IsEmpty());
}

TEST_P(WatcherOnBackend, DoesNotReportOwnChangesMadeThroughIt)
{
    runScript(folder, "echo 1 > a; mkdir d; echo 1 > d/f");
    // It needs no help of the event source.
    Watching watching(folder, {.backend = GetParam(), .ignoreSelf = false});
    const auto own = [&](const std::string &name, const std::function<void()> &change) {
        watching.watcher->performOwnChange(QString::fromStdString(folder + '/' + name), change);
    };
    own("a", [&] { std::ofstream(folder + "/a") << "own"; });
    own("b", [&] { std::ofstream(folder + "/b") << "own"; });
    own("b", [&] { std::filesystem::rename(folder + "/b", folder + "/.b"); });
    own("d", [&] { std::filesystem::remove_all(folder + "/d"); });
    EXPECT_THROW(own("c", [] { throw std::runtime_error("refused"); }), std::runtime_error);
    ASSERT_TRUE(flushed(*watching.watcher));
    EXPECT_THAT(watching.recorder->takeLines(), IsEmpty());
    EXPECT_EQ(inventoried(*watching.watcher), onDisk(folder));
    EXPECT_EQ(watching.watcher->itemAtPath(QString::fromStdString(folder + "/a"))->size(), 3U);

    own("a", [&] { std::ofstream(folder + "/a") << "own again"; });
    EXPECT_THAT(linesAfter(watching, "echo foreign > a"), ElementsAre("updated a"));
}

TEST_P(WatcherOnBackend, FiltersByExtensionOrType)
{
    const std::string files = "echo 1 > a.json; echo 1 > b.JSON; echo 1 > json; echo '#!/bin/sh' > c.sh; "
                              "echo 1 > d.txt; echo 1 > .json; mkdir e.json f; echo 1 > f/g.json";
    const struct
    {
        QStringList types, extensions;
        std::set<std::string> kept;
    } cases[] = {
        {{}, {QStringLiteral("Json")}, {"a.json", "b.JSON", "e.json", "f/g.json"}},
        {{QStringLiteral("text/plain")}, {}, {"a.json", "b.JSON", "json", "c.sh", "d.txt", "f/g.json"}},
        {{QStringLiteral("application/x-shellscript")}, {QStringLiteral("txt")}, {"c.sh", "d.txt"}},
    };
    for (const auto &filter : cases) {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directory(folder);
        Watching watching(folder,
                          {.backend = GetParam(), .types = filter.types, .extensions = filter.extensions});
        linesAfter(watching, files);
        EXPECT_EQ(watching.recorder->replayed(), filter.kept);
        Watching second(folder,
                        {.backend = GetParam(), .types = filter.types, .extensions = filter.extensions});
        EXPECT_EQ(inventoried(*second.watcher), filter.kept);
        linesAfter(watching, "rm -r *");
        EXPECT_THAT(watching.recorder->replayed(), IsEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(, WatcherOnBackend, testing::Values(WatchBackend::Fanotify, WatchBackend::Inotify),
                         [](const auto &info) { return backendName(info.param).toStdString(); });

} // namespace
