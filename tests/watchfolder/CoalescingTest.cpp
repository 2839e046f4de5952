// SPDX-License-Identifier: MIT
#include "watchfolder/PendingDirectories.h"
#include "watchfolder/PendingEvents.h"
#include "watchfolder/RescanBackoff.h"
#include "watchfolder/VRXWatchFolderEvent.h"

#include <gmock/gmock.h>

#include <sys/inotify.h>

using namespace vantle;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

TEST(PendingEventsTest, CollectsOneEventPerPath)
{
    struct Note
    {
        const char *name;
        quint32 mask;
        bool own = false;
    };
    const struct
    {
        const char *name;
        OpenFile probed;
        std::vector<Note> notes;
        std::vector<std::string> delivered; // at the first look
        bool secondLook = false;            // after which the path comes
    } cases[] = {
        {"written and closed",
         OpenFile::Written,
         {{"a", IN_CREATE}, {"a", IN_MODIFY}, {"a", IN_CLOSE_WRITE}},
         {"a ItemCreated ItemModified ItemIsFile"}},
        {"merged by the kernel",
         OpenFile::Written,
         {{"a", IN_CREATE | IN_CLOSE_WRITE}},
         {"a ItemCreated ItemModified ItemIsFile"}},
        {"still written", OpenFile::Written, {{"a", IN_CREATE}, {"a", IN_MODIFY}}, {}},
        {"just opened", OpenFile::Empty, {{"a", IN_CREATE}}, {}},
        {"empty, of another user", OpenFile::Unknown, {{"a", IN_CREATE}}, {}, true},
        {"linked in", OpenFile::Complete, {{"a", IN_CREATE}}, {"a ItemCreated ItemIsFile"}},
        {"content, but no write", OpenFile::Written, {{"a", IN_CREATE}}, {}, true},
        {"replaced by one that is written", OpenFile::Empty, {{"a", IN_DELETE}, {"a", IN_CREATE}}, {}},
        {"moved in",
         OpenFile::Written,
         {{"a", IN_CREATE}, {"a", IN_MOVED_TO}},
         {"a ItemCreated ItemRenamed ItemIsFile"}},
        {"in order of appearance",
         OpenFile::Written,
         {{"b", IN_MODIFY}, {"a", IN_ATTRIB}, {"b", IN_DELETE}},
         {"b ItemRemoved ItemModified ItemIsFile", "a ItemInodeMetaMod ItemIsFile"}},
        {"a directory",
         OpenFile::Written,
         {{"d", IN_CREATE | IN_ISDIR}},
         {"d ScanSubDirs ItemCreated ItemIsDir"}},
        {"a directory's mode",
         OpenFile::Written,
         {{"d", IN_ATTRIB | IN_ISDIR}},
         {"d ItemInodeMetaMod ItemIsDir"}},
        {"own only",
         OpenFile::Written,
         {{"a", IN_CLOSE_WRITE, true}},
         {"a ItemModified ItemIsFile OwnEvent"}},
        {"own and foreign",
         OpenFile::Written,
         {{"a", IN_DELETE, true}, {"a", IN_CLOSE_WRITE}},
         {"a ItemModified ItemIsFile"}},
    };
    const auto strings = [](const std::vector<VRXWatchFolderEvent> &events) {
        std::vector<std::string> lines;
        for (const VRXWatchFolderEvent &event : events)
            lines.push_back(event.nativePath().substr(3) + event.itemsFlagsString().toStdString());
        return lines;
    };
    for (const auto &window : cases) {
        SCOPED_TRACE(window.name);
        PendingEvents pending([&window](const std::string &) { return window.probed; });
        PendingEvents::Clock::time_point now{};
        for (const Note &note : window.notes)
            pending.note("/f", note.name, note.mask, note.own, now);
        EXPECT_THAT(strings(pending.take(false, now)), ElementsAreArray(window.delivered));
        EXPECT_EQ(pending.nextLook().has_value(), window.secondLook);
        now += pending.nextLook().value_or(PendingEvents::Clock::duration::zero());
        EXPECT_EQ(pending.take(false, now).size(), window.secondLook ? 1U : 0U);
    }
}

TEST(PendingEventsTest, HeldFileComesWithAllItsFlagsOnceClosed)
{
    using namespace std::chrono_literals;
    OpenFile probed = OpenFile::Empty;
    PendingEvents pending([&probed](const std::string &) { return probed; });
    PendingEvents::Clock::time_point now{};
    pending.note("/f", "a", IN_CREATE, false, now);
    EXPECT_TRUE(pending.take(true, now).empty());
    pending.note("/f", "a", IN_CLOSE_WRITE, false, now);
    const auto events = pending.take(false, now);
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].flags(), ItemCreated | ItemModified | ItemIsFile);

    // Two seconds after the last event, and not the first.
    probed = OpenFile::Unknown;
    pending.note("/f", "b", IN_CREATE, false, now);
    pending.note("/f", "b", IN_ATTRIB, false, now += 1500ms);
    EXPECT_TRUE(pending.take(true, now += 1900ms).empty());
    EXPECT_EQ(pending.nextLook(), 100ms);
    EXPECT_EQ(pending.take(false, now += 100ms).size(), 1U);
    EXPECT_FALSE(pending.nextLook());
}

TEST(PendingEventsTest, WhatAComparisonWillTellCanBeDropped)
{
    const auto now = PendingEvents::Clock::now();
    PendingEvents pending([](const std::string &) { return OpenFile::Complete; });
    pending.note("/f", "foreign", IN_CREATE | IN_CLOSE_WRITE, false, now);
    pending.note("/f", "own", IN_CREATE | IN_CLOSE_WRITE, true, now);
    pending.note("/f", "held", IN_CREATE, false, now);
    pending.dropCompared();
    pending.note("/f", "later", IN_MODIFY, false, now);
    std::vector<std::string> paths;
    for (const VRXWatchFolderEvent &event : pending.take(false, now))
        paths.push_back(event.nativePath());
    EXPECT_THAT(paths, ElementsAre("/f/own", "/f/held", "/f/later"));
}

TEST(PendingDirectoriesTest, KeepsNoPathBelowAnother)
{
    PendingDirectories pending;
    for (const char *path : {"/f/a/", "/f/ab", "/f/a/b/", "/f/c/d", "/f/c"})
        pending.addPathToInventory(path);
    EXPECT_THAT(pending.pendingPathsToInventory(), ElementsAre("/f/a/", "/f/ab/", "/f/c/"));
    EXPECT_EQ(pending.dequeueNextPathToInventory(), "/f/a/");
    pending.addPathToInventory("/f");
    EXPECT_THAT(pending.pendingPathsToInventory(), ElementsAre("/f/"));
    pending.clear();
    EXPECT_EQ(pending.dequeueNextPathToInventory(), std::nullopt);
}

TEST(RescanBackoffTest, DoublesWhileOverflowsGoOn)
{
    using namespace std::chrono_literals;
    RescanBackoff backoff;
    RescanBackoff::Clock::time_point now{};
    std::vector<std::chrono::milliseconds> delays;
    for (int i = 0; i < 7; ++i)
        delays.push_back(backoff.nextDelay(now += 1s));
    EXPECT_THAT(delays, ElementsAre(250ms, 500ms, 1000ms, 2000ms, 4000ms, 5000ms, 5000ms));
    EXPECT_EQ(backoff.nextDelay(now += 11s), 250ms);
}

TEST(VRXWatchFolderEventTest, NamesItsFlags)
{
    const VRXWatchFolderEvent every("/f", 0, 0xFFFFFFFF, 1);
    EXPECT_EQ(every.itemsFlagsString(),
              QStringLiteral(
                  " ScanSubDirs UserDropped KernelDropped IdsWrapped HistoryDone RootChanged Mount Unmount "
                  "ItemCreated ItemRemoved ItemInodeMetaMod ItemRenamed ItemModified ItemFinderInfoMod "
                  "ItemChangeOwner ItemXattrMod ItemIsFile ItemIsDir ItemIsSymlink OwnEvent"));
    EXPECT_TRUE(VRXWatchFolderEvent::stringFromFSEventStreamEventFlag(0x3).isEmpty());
    EXPECT_TRUE(VRXWatchFolderEvent::stringFromFSEventStreamEventFlag(0x100000).isEmpty());
}

} // namespace
