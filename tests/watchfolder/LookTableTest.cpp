// SPDX-License-Identifier: MIT
#include "watchfolder/LookTable.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace vantle;

namespace {

using enum LookCause;
using enum Knowledge;

constexpr LookCause kCauses[] = {look, foreign, own, ownRemoval, ownReplacement};
constexpr Knowledge kKnowledge[] = {nothing, told, untold, ownByEvent, ownExact};
constexpr OnDisk kFound[] = {OnDisk::unreadable, OnDisk::missing, OnDisk::same, OnDisk::other};

bool isOwn(LookCause cause)
{
    return cause != look && cause != foreign;
}

/// What the rule promises, over all of its cases.
TEST(LookTable, KeepsItsPromises)
{
    for (const LookCause cause : kCauses) {
        for (const Knowledge known : kKnowledge) {
            for (const OnDisk found : kFound) {
                if (known == nothing && found == OnDisk::same)
                    continue; // can't be
                SCOPED_TRACE(testing::Message() << "cause " << int(cause) << ", known " << int(known)
                                                << ", found " << int(found));
                const auto [report, record] = meaningOfLook(cause, known, found);
                const bool isThere = found == OnDisk::same || found == OnDisk::other;
                if (found == OnDisk::unreadable) {
                    EXPECT_EQ(std::tuple(report, record), std::tuple(Report::none, known));
                }
                if (isOwn(cause) && report != Report::none) { // only the loss of what was put there for sure
                    EXPECT_EQ(report, Report::missing);
                    EXPECT_TRUE(known == ownExact || cause == own);
                }
                if (!isOwn(cause) && found == OnDisk::other) {
                    EXPECT_NE(report, Report::none) << "a foreign change is never lost";
                }
                if (!isOwn(cause) && found == OnDisk::missing && known != nothing) {
                    EXPECT_EQ(report, Report::missing);
                }
                if (report == Report::added) {
                    EXPECT_TRUE(known == nothing || known == untold) << "nobody is told twice";
                }
                if (report == Report::added || report == Report::updated) {
                    EXPECT_EQ(record, told);
                }
                if (isThere && record != nothing) {
                    EXPECT_EQ(meaningOfLook(look, record, OnDisk::same).report, Report::none)
                        << "a second look says nothing new";
                }
                if (isOwn(cause) && isThere && known != ownExact && record != nothing) {
                    EXPECT_NE(meaningOfLook(foreign, record, OnDisk::same).report, Report::none)
                        << "the other's event is still to come";
                }
            }
        }
    }
}

} // namespace
