// SPDX-License-Identifier: MIT
#include "base/WorkingQueue.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScarceResources.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Wait.h"
#include "tests/watchfolder/Recorder.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>
#include <thread>

using namespace vantle;
using namespace vantle::test;
using testing::ElementsAre;

namespace {

TEST(WorkingQueueTest, RunsWhatIsAddedWhenNoThreadIsToBeHad)
{
    std::vector<int> order;
    bool isOver = false;
    {
        std::unique_ptr<WorkingQueue> queue;
        {
            const NoThreads noThreads;
            queue = std::make_unique<WorkingQueue>(QualityOfService::Utility);
            EXPECT_TRUE(queue->ensureThread());
            queue->add([&](const auto &) {
                queue->add([&](const auto &) { order.push_back(2); }); // behind this one, and not inside
                queue->waitUntilFinished();
                order.push_back(1);
            });
            queue->waitUntilFinished();
            EXPECT_THAT(order, ElementsAre(1, 2));
        }
        queue->add([&, caller = std::this_thread::get_id()](const auto &) {
            EXPECT_NE(std::this_thread::get_id(), caller);
            order.push_back(3);
        });
        queue->waitUntilFinished();
        const NoThreads again;
        queue->add([&](const auto &) { isOver = true; });
        queue->waitUntilFinished();
    }
    EXPECT_THAT(order, ElementsAre(1, 2, 3));
    EXPECT_TRUE(isOver);
}

TEST(WatcherInAShortage, OfThreadsSaysSoAndStartsLater)
{
    const TemporaryFolder folder;
    VRXWatchFolder watcher(QString::fromStdString(folder.path()));
    WatchFolderError error;
    {
        const NoThreads noThreads;
        EXPECT_FALSE(watcher.startWatching(&error));
    }
    EXPECT_EQ(error.code, 1003);
    EXPECT_EQ(error.reason, QString::fromLatin1(strerror(EAGAIN)));
    EXPECT_FALSE(watcher.isWatchingPath());
    EXPECT_TRUE(watcher.startWatching(&error));
    EXPECT_TRUE(flushed(watcher));
}

class WatcherOfABackendInAShortage : public testing::TestWithParam<WatchBackend>
{
protected:
    void SetUp() override
    {
        if (const std::string reason = refusal(GetParam()); !reason.empty())
            GTEST_SKIP() << backendName(GetParam()).toStdString() << " is refused here: " << reason;
    }
};

TEST_P(WatcherOfABackendInAShortage, OfThreadsFindsItsFolderAgain)
{
    const TemporaryFolder outside;
    const std::string folder = outside.path() + "/w";
    runScript(outside.path(), "mkdir w; echo 1 > w/a");
    Watching watching(folder, {.backend = GetParam()});
    ASSERT_TRUE(watching.started);
    for (int i = 0; i < 20; ++i) {
        const NoThreads noThreads;
        runScript(outside.path(), "mv w away; mkdir w; echo 1 > w/b");
        ASSERT_TRUE(flushed(*watching.watcher));
        EXPECT_THAT(watching.recorder->replayed(), ElementsAre("b"));
        runScript(outside.path(), "rm -r w; mv away w");
        ASSERT_TRUE(flushed(*watching.watcher));
        EXPECT_THAT(watching.recorder->replayed(), ElementsAre("a"));
    }
}

#ifndef __SANITIZE_ADDRESS__ // it needs descriptors of its own to look at memory

TEST(WatcherInAShortage, OfDescriptorsSaysSo)
{
    const TemporaryFolder folder;
    VRXWatchFolder watcher(QString::fromStdString(folder.path()));
    WatchFolderError error;
    {
        const NoDescriptors noDescriptors;
        EXPECT_FALSE(watcher.startWatching(&error));
    }
    EXPECT_EQ(error.code, 1003);
    EXPECT_EQ(error.reason, QString::fromLatin1(strerror(EMFILE)));
}

TEST_P(WatcherOfABackendInAShortage, OfDescriptorsReportsNoHalfInventory)
{
    const TemporaryFolder folder;
    runScript(folder.path(), "echo 1 > a; mkdir d; echo 1 > d/b");
    const auto recorder = std::make_shared<Recorder>(folder.path());
    std::unique_ptr<NoDescriptors> noDescriptors;
    auto environment = WatchFolderEnvironment::system();
    environment.startStream = [&](const auto &configuration, WatchBackend backend, std::error_code &error) {
        auto stream = startKernelEventStream(configuration, backend, error);
        noDescriptors = std::make_unique<NoDescriptors>();
        return stream;
    };
    VRXWatchFolder watcher(QString::fromStdString(folder.path()), recorder, true, 0.02, {}, {}, environment);
    watcher.setBackend(GetParam());
    ASSERT_TRUE(watcher.startWatching());
    ASSERT_TRUE(waitFor([&] { return recorder->has(std::string("error ") + strerror(EMFILE)); }));
    EXPECT_FALSE(recorder->reloaded());
    noDescriptors.reset();
    ASSERT_TRUE(waitFor([&] { return recorder->reloaded(); }));
    EXPECT_THAT(recorder->replayed(), ElementsAre("a", "d", "d/b"));

    // Nor does a comparison.
    runScript(folder.path(), "mv d e");
    noDescriptors = std::make_unique<NoDescriptors>();
    ASSERT_TRUE(flushed(watcher));
    noDescriptors.reset();
    EXPECT_TRUE(waitFor([&] { return recorder->replayed() == std::set<std::string>{"a", "e", "e/b"}; }));
}

#endif

INSTANTIATE_TEST_SUITE_P(, WatcherOfABackendInAShortage,
                         testing::Values(WatchBackend::Fanotify, WatchBackend::Inotify),
                         [](const auto &info) { return backendName(info.param).toStdString(); });

} // namespace
