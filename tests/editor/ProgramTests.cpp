// SPDX-License-Identifier: MIT
#include "tests/support/FinishedProcess.h"
#include "tests/support/LiveStore.h"

#include <QtGui/QImage>

#include <gtest/gtest.h>

#include <signal.h>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using test::runProcess;
using test::waitFor;

TEST(Program, NeedsNoDisplayToSayHowItIsCalled)
{
    const struct
    {
        std::vector<std::string> arguments;
        bool isHelp;
    } cases[] = {
        {{"--help"}, true}, {{"--colors", "blue"}, false}, {{"--select", "A"}, false}, {{"--bogus"}, false}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.arguments.front());
        std::vector<std::string> command{"/usr/bin/env", "QT_QPA_PLATFORM=none", VANTLE};
        command.insert(command.end(), c.arguments.begin(), c.arguments.end());
        const auto finished = runProcess(command);
        EXPECT_EQ(finished.exitCode == 0, c.isHelp);
        EXPECT_EQ(finished.exitCode > 100, !c.isHelp);
        EXPECT_NE((c.isHelp ? finished.output : finished.errors).indexOf("--help"), -1);
    }
    // Qt's own options are still taken.
    EXPECT_EQ(runProcess({VANTLE, "-platform", "offscreen", "--screenshot", "/dev/null/a.png"}).exitCode, 1);
    EXPECT_GT(runProcess({VANTLE, "-platform", "offscreen", "--bogus"}).exitCode, 100);
}

} // namespace
} // namespace vantle
