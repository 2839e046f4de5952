// SPDX-License-Identifier: MIT
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "watchfolder/FolderPresence.h"
#include "watchfolder/WayToFolder.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace vantle;
using namespace vantle::test;

namespace {

using Step = PresenceStep;
using enum FolderPresence;
using Input = PresenceInput;

// What must hold whatever happens, for each row, those that are not in the table included.
TEST(FolderPresenceTest, NeverGoesDeafAndNeverForgetsToTell)
{
    for (const FolderPresence presence : {present, overflowed, missing, gone}) {
        for (const Input input : {Input::doubt, Input::overflow, Input::flush, Input::due, Input::same,
                                  Input::opened, Input::absent, Input::refused}) {
            SCOPED_TRACE(testing::Message() << "presence " << static_cast<int>(presence) << ", input "
                                            << static_cast<int>(input));
            const Step step = afterInput(presence, input);
            const bool waits = step.action == Step::waitBriefly || step.action == Step::waitLong ||
                               step.action == Step::waitForQuiet;
            const bool looks = step.action == Step::look || step.action == Step::reopen;
            if (input == Input::opened) { // and only then is it there again
                EXPECT_EQ(step.next, present);
                EXPECT_NE(step.tell, Step::nothing);
            } else if (presence != present) {
                EXPECT_NE(step.next, present);
            }
            if (input == Input::absent || input == Input::refused)
                EXPECT_TRUE(waits && (step.next == missing || step.next == gone));
            else
                EXPECT_EQ(waits, presence == present && input == Input::overflow);
            if (presence != present && (input == Input::flush || input == Input::due)) {
                EXPECT_EQ(step.action, Step::reopen);
            }
            if (looks) { // the outcome decides
                EXPECT_EQ(step.next, presence);
            }
            if (step.next == gone && presence != gone) {
                EXPECT_EQ(step.tell, Step::rootChanged);
            }
        }
    }
}

TEST(FolderPresenceTest, TellsOfARealDisappearanceOnly)
{
    const struct
    {
        const char *name;
        FolderPresence begin;
        std::vector<Input> inputs;
        FolderPresence end;
        std::vector<Step::Tell> told;
    } stories[] = {
        {"a doubt without reason", present, {Input::doubt, Input::same}, present, {}},
        {"replaced at once", present, {Input::doubt, Input::opened}, present, {Step::rootChanged}},
        {"briefly away", present, {Input::absent, Input::due, Input::opened}, present, {Step::rootChanged}},
        {"away, told at each look",
         present,
         {Input::absent, Input::absent, Input::absent},
         gone,
         {Step::rootChanged, Step::rootChanged}},
        {"refused, told once",
         present,
         {Input::refused, Input::refused, Input::refused},
         gone,
         {Step::rootChanged}},
        {"overflow",
         present,
         {Input::overflow, Input::overflow, Input::due, Input::opened},
         present,
         {Step::eventsLost}},
        {"overflow, then a doubt", present, {Input::overflow, Input::doubt, Input::same}, overflowed, {}},
        {"overflow without descriptors",
         overflowed,
         {Input::due, Input::refused},
         missing,
         {Step::eventsLost}},
    };
    for (const auto &story : stories) {
        SCOPED_TRACE(story.name);
        FolderPresence presence = story.begin;
        std::vector<Step::Tell> told;
        for (const Input input : story.inputs) {
            const Step step = afterInput(presence, input);
            presence = step.next;
            if (step.tell != Step::nothing)
                told.push_back(step.tell);
        }
        EXPECT_EQ(presence, story.end);
        EXPECT_EQ(told, story.told);
    }
}

TEST(WayToFolderTest, LeadsThroughAllLinks)
{
    const TemporaryFolder root;
    runScript(root.path(), "mkdir -p x rel/42/w z/deep; ln -s ../rel/./42/ x/latest; ln -s x/latest current; "
                           "ln -s loop loop; ln -s $PWD/z/deep absolute");
    const auto way = [&root](const std::string &path) {
        std::map<std::string, WatchRole> found;
        for (const auto &[directory, role] : directoriesOnTheWay(root.path() + '/' + path)) {
            if (directory.starts_with(root.path()))
                found[directory.substr(root.path().size())] = role;
        }
        return found;
    };
    using Way = std::map<std::string, WatchRole>;
    EXPECT_EQ(way("current/w"), (Way{{"", WatchRole::Parent},
                                     {"/x", WatchRole::Parent},
                                     {"/rel", WatchRole::Ancestor},
                                     {"/rel/42", WatchRole::Parent}}));
    EXPECT_EQ(way("absolute"), (Way{{"", WatchRole::Parent}, {"/z", WatchRole::Parent}}));
    EXPECT_EQ(way("loop/x"), (Way{{"", WatchRole::Parent}}));
    EXPECT_EQ(directoriesOnTheWay("/").size(), 0U);
    EXPECT_EQ(directoriesOnTheWay("/proc"), (Way{{"/", WatchRole::Parent}}));
}

} // namespace
