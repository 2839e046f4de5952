// SPDX-License-Identifier: MIT
#include "VantlePresets/store/FileRelation.h"

#include <gtest/gtest.h>

#include <set>

namespace vantle {
namespace {

using enum SaveState;

constexpr SaveState kStates[] = {settled,       saving,     renaming,    savingBlind,
                                 renamingBlind, saveFailed, renameFailed};
constexpr SaveEvent kEvents[] = {
    SaveEvent::save,       SaveEvent::rename, SaveEvent::heard,  SaveEvent::savedOne, SaveEvent::failedOne,
    SaveEvent::skippedOne, SaveEvent::saved,  SaveEvent::failed, SaveEvent::refused,  SaveEvent::skipped};

bool isUnderWay(SaveState state)
{
    return state != settled && state != saveFailed && state != renameFailed;
}

bool owesRename(SaveState state)
{
    return state == renaming || state == renamingBlind || state == renameFailed;
}

/// What the table promises, over all of its cells.
TEST(FileRelation, KeepsItsPromises)
{
    for (const SaveState state : kStates) {
        for (const SaveEvent event : kEvents) {
            SCOPED_TRACE(testing::Message() << "state " << int(state) << ", event " << int(event));
            const auto [next, duty] = saveStep(state, event);
            const bool isEnd = event >= SaveEvent::saved;
            if (event == SaveEvent::save || event == SaveEvent::rename) {
                EXPECT_TRUE(isUnderWay(next));
                EXPECT_EQ(owesRename(next), owesRename(state) || event == SaveEvent::rename)
                    << "a rename is owed until it is done";
            }
            if (event == SaveEvent::heard) {
                EXPECT_EQ(duty, isUnderWay(state) ? SaveDuty::none : SaveDuty::believe)
                    << "what is heard while a save is under way may be older";
            }
            if (event == SaveEvent::saved) {
                EXPECT_EQ(next, settled);
            }
            if (event == SaveEvent::failed) {
                EXPECT_EQ(owesRename(next), owesRename(state));
                EXPECT_FALSE(isUnderWay(next));
            }
            if (event == SaveEvent::refused) {
                EXPECT_EQ(duty, SaveDuty::resolveConflict);
            }
            const bool isBlind = state == savingBlind || state == renamingBlind;
            const bool isHeard = isBlind || event == SaveEvent::skipped;
            if (isEnd && isHeard && event != SaveEvent::refused) {
                EXPECT_EQ(duty, SaveDuty::reread) << "what was heard is never forgotten";
            }
            if (isBlind && !isEnd) {
                EXPECT_TRUE(next == savingBlind || next == renamingBlind);
            }
        }
    }
}

TEST(FileRelation, CountsTheSavesThatAreUnderWay)
{
    using Outcome = FileRelation::Outcome;
    FileRelation relation;
    relation.begin(false);
    relation.begin(true);
    EXPECT_EQ(relation.end(Outcome::skipped), SaveDuty::none);
    EXPECT_EQ(relation.state(), renamingBlind);
    EXPECT_EQ(relation.end(Outcome::failed), SaveDuty::reread);
    EXPECT_TRUE(relation.isRenameOwed() && !relation.isUnderWay());
    EXPECT_EQ(relation.hear(), SaveDuty::believe);
    relation.begin(false);
    EXPECT_EQ(relation.end(Outcome::refused), SaveDuty::resolveConflict);
    relation.begin(true);
    EXPECT_EQ(relation.end(Outcome::written), SaveDuty::none);
    EXPECT_EQ(relation.state(), settled);
}

} // namespace
} // namespace vantle
