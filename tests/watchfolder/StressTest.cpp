// SPDX-License-Identifier: MIT
// Threads that do everything to watchers at once; most telling under the thread sanitizer.
// VANTLE_STRESS_SECONDS says for how long (2 at first), VANTLE_SEED what they do.
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Wait.h"
#include "tests/watchfolder/Recorder.h"

#include <gmock/gmock.h>

#include <atomic>
#include <fstream>
#include <iostream>
#include <random>
#include <thread>

using namespace vantle;
using namespace vantle::test;

namespace {

unsigned fromEnvironment(const char *name, unsigned otherwise)
{
    const char *given = std::getenv(name);
    return given ? static_cast<unsigned>(std::stoul(given)) : otherwise;
}

class WatcherUnderStress : public testing::TestWithParam<WatchBackend>
{
protected:
    void SetUp() override
    {
        if (const std::string reason = refusal(GetParam()); !reason.empty())
            GTEST_SKIP() << backendName(GetParam()).toStdString() << " is refused here: " << reason;
        std::cout << "VANTLE_SEED=" << seed << std::endl;
        runScript(folder.path(), "mkdir -p d/e; echo 1 > a; echo 1 > d/b");
    }

    std::unique_ptr<VRXWatchFolder> make(std::shared_ptr<VRXWatchFolderDelegate> delegate)
    {
        auto watcher =
            std::make_unique<VRXWatchFolder>(QString::fromStdString(folder.path()), std::move(delegate), true,
                                             0.001, QStringList(), QStringList());
        watcher->setBackend(GetParam());
        return watcher;
    }

    void meddle(VRXWatchFolder &watcher, unsigned choice)
    {
        switch (choice % 12) {
        case 0:
        case 1:
        case 2:
            EXPECT_TRUE(watcher.startWatching());
            return;
        case 3:
            return watcher.stopWatching();
        case 4:
        case 5:
            return watcher.flush([this] { ++flushes; });
        case 6:
            return watcher.cancel();
        case 7:
            return watcher.forceChangesCheckingAtPath(watcher.folderPath());
        case 8:
            return watcher.performOwnChange(folder.pathText("own"),
                                            [this, choice] { std::ofstream(folder.path("own")) << choice; });
        case 9:
            static_cast<void>(watcher.streamDescription());
            static_cast<void>(watcher.backend());
            static_cast<void>(watcher.isWatchingPath());
            return;
        case 10:
            std::ofstream(folder.path("f" + std::to_string(choice % 7))) << choice;
            return;
        default:
            static_cast<void>(watcher.pathToItemsDictionary());
            watcher.checkChangesAtPaths({folder.pathText("a")}, [this] { ++flushes; });
        }
    }

    /// Four threads at once for as long as is asked for, while this one runs its event loop.
    void inFourThreads(const std::function<void(std::mt19937 &random)> &act)
    {
        const auto end = std::chrono::steady_clock::now() +
                         std::chrono::seconds(fromEnvironment("VANTLE_STRESS_SECONDS", 2));
        std::atomic<int> running = 4;
        std::vector<std::thread> threads;
        for (unsigned thread = 0; thread < 4; ++thread)
            threads.emplace_back([&, thread] {
                std::mt19937 random(seed + thread);
                while (std::chrono::steady_clock::now() < end)
                    act(random);
                --running;
            });
        EXPECT_TRUE(waitFor([&] { return running == 0; }, std::chrono::minutes(10)));
        for (std::thread &thread : threads)
            thread.join();
    }

    const unsigned seed = fromEnvironment("VANTLE_SEED", std::random_device()());
    const TemporaryFolder folder;
    std::atomic<int> flushes = 0;
};

TEST_P(WatcherUnderStress, SharedByFourThreads)
{
    const auto recorder = std::make_shared<Recorder>(folder.path());
    const auto watcher = make(recorder);
    inFourThreads([&](std::mt19937 &random) { meddle(*watcher, static_cast<unsigned>(random())); });
    watcher->stopWatching();
    EXPECT_TRUE(watcher->URLs().isEmpty());
    ASSERT_TRUE(watcher->startWatching());
    ASSERT_TRUE(flushed(*watcher));
    EXPECT_EQ(inventoried(*watcher), onDisk(folder.path()));
    runScript(folder.path(), "echo 1 > last");
    ASSERT_TRUE(flushed(*watcher));
    EXPECT_TRUE(recorder->has("added last"));
}

TEST_P(WatcherUnderStress, OneAfterTheOtherInFourThreads)
{
    inFourThreads([&](std::mt19937 &random) {
        const auto watcher = make(std::make_shared<Recorder>(folder.path()));
        for (unsigned i = static_cast<unsigned>(random()) % 6; i > 0; --i)
            meddle(*watcher, static_cast<unsigned>(random()));
    });
}

INSTANTIATE_TEST_SUITE_P(, WatcherUnderStress, testing::Values(WatchBackend::Fanotify, WatchBackend::Inotify),
                         [](const auto &info) { return backendName(info.param).toStdString(); });

} // namespace
