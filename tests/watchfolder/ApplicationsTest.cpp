// SPDX-License-Identifier: MIT
#include "base/RunLoop.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Wait.h"
#include "tests/watchfolder/Recorder.h"

#include <gmock/gmock.h>

using namespace vantle;
using namespace vantle::test;
using testing::ElementsAre;

namespace {

// One after the other in one process, as plug-ins and test programs have them.
TEST(WatcherInSeveralApplications, HearsInEachOfThem)
{
    const TemporaryFolder folder;
    bool ranWithout = false;
    std::unique_ptr<Watching> lasting;
    for (const char *name : {"a", "b", "c"}) {
        SCOPED_TRACE(name);
        int arguments = 0;
        const QCoreApplication application(arguments, nullptr);
        if (!lasting)
            lasting = std::make_unique<Watching>(folder.path(), Watching::Options());
        const Watching watching(folder.path(), {});
        ASSERT_TRUE(watching.started);
        runScript(folder.path(), std::string("echo 1 > ") + name);
        ASSERT_TRUE(flushed(*watching.watcher) && flushed(*lasting->watcher));
        const std::string added = std::string("added ") + name;
        EXPECT_THAT(watching.recorder->takeLines(), ElementsAre(added));
        EXPECT_THAT(lasting->recorder->takeLines(), ElementsAre(added));
    }
    RunLoop::main()->post([&ranWithout] { ranWithout = true; });
    EXPECT_FALSE(ranWithout);
}

} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
