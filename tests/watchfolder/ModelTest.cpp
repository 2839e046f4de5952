// SPDX-License-Identifier: MIT
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Wait.h"
#include "tests/watchfolder/HoldableQueue.h"
#include "tests/watchfolder/Recorder.h"

#include "watchfolder/KernelEventStream.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iostream>
#include <random>
#include <thread>

using namespace vantle;
using namespace vantle::test;

namespace {

unsigned seedOfThisRun()
{
    const char *given = std::getenv("VANTLE_SEED");
    const unsigned seed = given ? static_cast<unsigned>(std::stoul(given)) : std::random_device()();
    std::cout << "VANTLE_SEED=" << seed << std::endl;
    return seed;
}

class WatcherUnderRandomChanges : public testing::TestWithParam<WatchBackend>
{
protected:
    void SetUp() override
    {
        if (const std::string reason = refusal(GetParam()); !reason.empty())
            GTEST_SKIP() << backendName(GetParam()).toStdString() << " is refused here: " << reason;
        std::filesystem::create_directory(folder);
        // The queue can be held, and its overflows are counted.
        options.backend = GetParam();
        options.environment.startStream = [this](FileSystemEventStream::Configuration configuration,
                                                 WatchBackend backend, std::error_code &error) {
            configuration.callback = [this, deliver = configuration.callback](auto events) {
                for (const VRXWatchFolderEvent &event : events)
                    overflows += event.has(KernelDropped) ? 1 : 0;
                deliver(std::move(events));
            };
            auto made = std::make_shared<KernelEventStream>(configuration, backend, [this](auto &refused) {
                auto queue = GetParam() == WatchBackend::Fanotify ? openFanotifyQueue(refused)
                                                                  : openInotifyQueue(refused);
                return queue ? std::make_unique<HoldableQueue>(std::move(queue), holder) : nullptr;
            });
            error = made->start();
            return error ? nullptr : made;
        };
    }

    void tell(ChildProcess &child, const std::string &line)
    {
        child.send(line);
        ASSERT_EQ(child.receive(), "done") << line;
    }

    TemporaryFolder outside;
    const std::string folder = outside.path() + "/watched";
    const std::shared_ptr<HoldableQueue::Holder> holder = std::make_shared<HoldableQueue::Holder>();
    int overflows = 0;
    Watching::Options options;
};

// However the folder is treated: when it is quiet, the inventory is what is there, and so is what the
// callbacks told.
TEST_P(WatcherUnderRandomChanges, EndsWithWhatIsThere)
{
    constexpr int operations = 20'000;
    constexpr int operationsPerRound = 500;
    constexpr int enoughToOverflow = 17'000;
    const unsigned seed = seedOfThisRun();
    std::mt19937 random(seed);
    Watching watching(folder, options);
    ASSERT_TRUE(watching.started);
    ChildProcess child({FOLDER_CHANGER}, folder);

    for (int round = 0; round < operations / operationsPerRound; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const bool isHeld = round % 16 == 7;
        // A folder that was renamed is read again anyway; in one round it is the overflow alone that asks for
        // it.
        const bool overflowsOnly = round == 7;
        if (overflowsOnly) {
            ASSERT_TRUE(flushed(*watching.watcher));
        }
        holder->hold(isHeld);
        if (isHeld)
            tell(child, "burst " + std::to_string(enoughToOverflow));
        tell(child,
             "random " + std::to_string(random() % 100'000) + ' ' + std::to_string(operationsPerRound));
        holder->hold(false);
        if (overflowsOnly) {
            ASSERT_TRUE(flushed(*watching.watcher));
            EXPECT_GT(overflows, 0);
        }
        if (random() % 8 == 0) {
            std::filesystem::rename(folder, outside.path() + "/away");
            if (random() % 2 == 0) {
                ASSERT_TRUE(flushed(*watching.watcher));
                EXPECT_THAT(inventoried(*watching.watcher), testing::IsEmpty());
            }
            std::filesystem::rename(outside.path() + "/away", folder);
        }
        if (random() % 4 == 0) {
            ASSERT_TRUE(flushed(*watching.watcher));
        }
    }

    const auto there = onDisk(folder);
    EXPECT_TRUE(waitFor([&] { return flushed(*watching.watcher) && inventoried(*watching.watcher) == there; },
                        std::chrono::seconds(10)));
    EXPECT_EQ(inventoried(*watching.watcher), there);
    EXPECT_EQ(watching.recorder->replayed(), there);
    EXPECT_THAT(watching.recorder->contradictions(), testing::IsEmpty());
    EXPECT_GT(there.size(), 0U);
}

// Of 10,000 changes by both sides at once, the client hears the other side's.
TEST_P(WatcherUnderRandomChanges, TellsForeignChangesFromOwnOnes)
{
    constexpr int rounds = 25;
    constexpr int filesPerRound = 50;
    constexpr int threads = 4;
    Watching watching(folder, options);
    ASSERT_TRUE(watching.started);
    if (GetParam() != WatchBackend::Fanotify)
        GTEST_SKIP() << "inotify does not tell who caused an event";

    const auto path = [this](const std::string &name) { return folder + '/' + name; };
    const auto changeOwn = [&](int thread, int round) {
        for (int i = 0; i < filesPerRound; ++i) {
            const std::string name = "own" + std::to_string(thread) + '-' + std::to_string(i);
            std::ofstream(path(name)) << round;
            if (i % 3 == 0)
                std::filesystem::rename(path(name), path(name + "r"));
            if (i % 5 == 0)
                std::filesystem::remove(path(name));
        }
    };
    ChildProcess child({FOLDER_CHANGER}, folder);
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE(round);
        std::vector<std::thread> own;
        for (int thread = 0; thread < threads; ++thread)
            own.emplace_back(changeOwn, thread, round);
        std::set<std::string> expected;
        const std::string verb = round == 0 ? "added " : "updated ";
        for (int i = 0; i < filesPerRound; ++i) {
            const std::string name = "foreign" + std::to_string(i);
            tell(child, "write " + name + ' ' + std::to_string(round));
            expected.insert(verb + name);
        }
        for (int i = 0; i < filesPerRound; ++i) {
            // Own and foreign in turns; what the child wrote last is never hidden.
            const std::string name = "shared" + std::to_string(i);
            std::ofstream(path(name)) << "own";
            tell(child, "write " + name + " foreign" + std::to_string(round));
            if (i % 2 == 0)
                std::ofstream(path(name), std::ios::app) << "own";
            tell(child, "write " + name + " last" + std::to_string(round));
        }
        for (std::thread &thread : own)
            thread.join();
        ASSERT_TRUE(flushed(*watching.watcher));

        std::multiset<std::string> foreign;
        std::set<std::string> shared;
        for (const std::string &line : watching.recorder->takeLines()) {
            EXPECT_EQ(line.find(" own"), std::string::npos) << line;
            if (line.find(" foreign") != std::string::npos)
                foreign.insert(line);
            else
                shared.insert(line.substr(line.find(' ') + 1));
        }
        EXPECT_EQ(std::set(foreign.begin(), foreign.end()), expected);
        EXPECT_EQ(shared.size(), static_cast<size_t>(filesPerRound));
    }
    EXPECT_EQ(inventoried(*watching.watcher), onDisk(folder));
}

INSTANTIATE_TEST_SUITE_P(, WatcherUnderRandomChanges,
                         testing::Values(WatchBackend::Fanotify, WatchBackend::Inotify),
                         [](const auto &info) { return backendName(info.param).toStdString(); });

} // namespace
