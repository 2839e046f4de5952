// SPDX-License-Identifier: MIT
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Wait.h"
#include "tests/watchfolder/Recorder.h"

#include <QtCore/QThread>

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

using namespace vantle;
using namespace vantle::test;

namespace {

/// Does something in each callback of a kind.
class Meddler final : public VRXWatchFolderDelegate
{
public:
    void watchFolderDidReloadCurrentURLs(VRXWatchFolder *watcher) override
    {
        ++reloads;
        if (onReload)
            onReload(*watcher);
    }
    void watchFolderFileAddedAtURL(VRXWatchFolder *watcher, const QUrl &, bool) override
    {
        ++added;
        if (onAdded)
            onAdded(*watcher);
    }

    std::function<void(VRXWatchFolder &)> onReload;
    std::function<void(VRXWatchFolder &)> onAdded;
    std::atomic<int> reloads = 0;
    std::atomic<int> added = 0;
};

class WatcherRestarts : public testing::TestWithParam<WatchBackend>
{
protected:
    void SetUp() override
    {
        if (const std::string reason = refusal(GetParam()); !reason.empty())
            GTEST_SKIP() << backendName(GetParam()).toStdString() << " is refused here: " << reason;
        watcher = std::make_unique<VRXWatchFolder>(QString::fromStdString(folder.path()), meddler, true, 0.01,
                                                   QStringList(), QStringList());
        watcher->setBackend(GetParam());
    }

    bool hearsOf(const std::string &name)
    {
        const int before = meddler->added;
        runScript(folder.path(), "echo 1 > " + name);
        return waitFor([&] { return meddler->added > before; });
    }

    TemporaryFolder folder;
    const std::shared_ptr<Meddler> meddler = std::make_shared<Meddler>();
    std::unique_ptr<VRXWatchFolder> watcher;
};

TEST_P(WatcherRestarts, InACallbackWhileTheMainThreadStartsToo)
{
    std::atomic<bool> isStarting = false;
    std::atomic<bool> isMeddling = false;
    meddler->onReload = [&](VRXWatchFolder &) {
        if (isMeddling.exchange(true))
            return;
        while (!isStarting)
            std::this_thread::yield();
        for (int i = 0; i < 1000; ++i) // long enough for the other start to be waiting
            EXPECT_TRUE(watcher->startWatching());
    };
    ASSERT_TRUE(watcher->startWatching());
    while (!isMeddling)
        std::this_thread::yield();
    isStarting = true;
    EXPECT_TRUE(watcher->startWatching());
    EXPECT_TRUE(flushed(*watcher));
    EXPECT_TRUE(hearsOf("a"));
}

TEST_P(WatcherRestarts, AndGoesOnHearingWhereverItIsStarted)
{
    const auto restart = [this] {
        watcher->stopWatching();
        EXPECT_TRUE(watcher->startWatching());
    };
    ASSERT_TRUE(watcher->startWatching());
    ASSERT_TRUE(waitFor([&] { return meddler->reloads == 1; }));

    meddler->onAdded = [&](VRXWatchFolder &) {
        meddler->onAdded = nullptr;
        restart();
    };
    ASSERT_TRUE(hearsOf("restarts"));
    ASSERT_TRUE(waitFor([&] { return meddler->reloads == 2; }));
    EXPECT_TRUE(hearsOf("a")) << "after a restart in a callback";

    std::thread(restart).join();
    ASSERT_TRUE(waitFor([&] { return meddler->reloads == 3; }));
    EXPECT_TRUE(hearsOf("b")) << "after a restart on a thread without an event loop";

    QThread looping;
    looping.start();
    QObject there;
    there.moveToThread(&looping);
    // Without a capture: the sanitizer does not see the locks by which the toolkit hands one over.
    static std::atomic<const decltype(restart) *> handedOver;
    handedOver = &restart;
    QMetaObject::invokeMethod(
        &there, [] { (*handedOver.load())(); }, Qt::QueuedConnection);
    ASSERT_TRUE(waitFor([&] { return meddler->reloads == 4; }));
    EXPECT_TRUE(hearsOf("c")) << "after a restart on a thread with an event loop";
    runScript(folder.path(), "echo 1 > d"); // and is delivered after its end, perhaps
    looping.quit();
    looping.wait();
    EXPECT_TRUE(waitFor([&] { return watcher->hasItemAtPath(folder.pathText("d")); }));
    EXPECT_TRUE(hearsOf("e")) << "after the end of the thread that started it";
}

TEST_P(WatcherRestarts, LeavesNothingBehindWhenACallbackStopsIt)
{
    ASSERT_TRUE(watcher->startWatching());
    ASSERT_TRUE(waitFor([&] { return meddler->reloads == 1; }));
    std::atomic<bool> isStopped = false;
    meddler->onAdded = [&](VRXWatchFolder &) {
        watcher->stopWatching();
        isStopped = true;
    };
    runScript(folder.path(), "for i in $(seq 50); do echo 1 > $i; done");
    ASSERT_TRUE(waitFor([&] { return isStopped.load(); }));
    watcher->stopWatching(); // waits for the callback
    EXPECT_TRUE(watcher->URLs().isEmpty());
    EXPECT_EQ(meddler->added, 1);
    EXPECT_FALSE(watcher->isWatchingPath());
    // Nor do changes that are made through it while it does not watch.
    watcher->performOwnChange(folder.pathText("own"), [&] { runScript(folder.path(), "echo 1 > own"); });
    EXPECT_TRUE(watcher->URLs().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(, WatcherRestarts, testing::Values(WatchBackend::Fanotify, WatchBackend::Inotify),
                         [](const auto &info) { return backendName(info.param).toStdString(); });

} // namespace
