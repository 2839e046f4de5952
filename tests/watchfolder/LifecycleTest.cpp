// SPDX-License-Identifier: MIT
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Wait.h"
#include "tests/watchfolder/Recorder.h"

#include <gmock/gmock.h>

#include <QtCore/QThread>

#include <atomic>
#include <fstream>
#include <thread>

using namespace vantle;
using namespace vantle::test;

namespace {

class WatcherLifecycle : public testing::TestWithParam<WatchBackend>
{
protected:
    void SetUp() override
    {
        if (const std::string reason = refusal(GetParam()); !reason.empty())
            GTEST_SKIP() << backendName(GetParam()).toStdString() << " is refused here: " << reason;
    }

    std::unique_ptr<VRXWatchFolder> make(std::weak_ptr<VRXWatchFolderDelegate> delegate)
    {
        auto watcher =
            std::make_unique<VRXWatchFolder>(QString::fromStdString(folder.path()), std::move(delegate), true,
                                             0.001, QStringList(), QStringList());
        watcher->setBackend(GetParam());
        return watcher;
    }

    void touch(int i) { std::ofstream(folder.path() + "/f" + std::to_string(i % 10)) << i; }

    TemporaryFolder folder;
};

size_t entries(const char *directory)
{
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(directory), {}));
}

/// Does something to the watcher in the first callback that it gets.
class Meddler final : public VRXWatchFolderDelegate
{
public:
    explicit Meddler(std::function<void()> meddle) : m_meddle(std::move(meddle)) {}
    ~Meddler() override { destroyedOn = QThread::currentThread(); }

    void watchFolderDidReloadCurrentURLs(VRXWatchFolder *) override
    {
        if (m_meddle)
            m_meddle();
        reloads++;
    }
    void watchFolderFileAddedAtURL(VRXWatchFolder *, const QUrl &, bool) override { later++; }
    void watchFolderFileUpdatedAtURL(VRXWatchFolder *, const QUrl &, bool) override { later++; }

    std::atomic<int> reloads = 0;
    std::atomic<int> later = 0;
    static std::atomic<QThread *> destroyedOn;

private:
    const std::function<void()> m_meddle;
};

std::atomic<QThread *> Meddler::destroyedOn = nullptr;

TEST_P(WatcherLifecycle, StartsAndStopsAThousandTimesWithWorkPending)
{
    std::filesystem::create_directories(folder.path() + "/d/e");
    const auto recorder = std::make_shared<Recorder>(folder.path());
    make(recorder)->startWatching(); // what is made once per process is made
    QCoreApplication::processEvents();
    const size_t descriptors = entries("/proc/self/fd");
    const size_t threads = entries("/proc/self/task");

    const auto kept = make(recorder);
    kept->setIgnoreSelf(false);
    for (int i = 0; i < 1000; ++i) {
        const auto fresh = i % 4 == 3 ? make(recorder) : nullptr;
        VRXWatchFolder &watcher = fresh ? *fresh : *kept;
        ASSERT_TRUE(watcher.startWatching()) << i;
        touch(i);
        watcher.flush([] {});
        if (i % 3 == 0)
            QCoreApplication::processEvents();
        if (i % 5 == 0)
            watcher.cancel();
        if (!fresh)
            watcher.stopWatching();
        EXPECT_TRUE(watcher.URLs().isEmpty() || fresh);
    }
    ASSERT_TRUE(kept->startWatching());
    ASSERT_TRUE(flushed(*kept));
    EXPECT_TRUE(kept->isWatchingPath());
    EXPECT_EQ(inventoried(*kept), onDisk(folder.path()));
    kept->stopWatching();
    EXPECT_FALSE(kept->isWatchingPath());
    // The kept watcher's working thread goes with it; threads that were let go end by themselves.
    EXPECT_TRUE(waitFor([&] { return entries("/proc/self/task") <= threads + 1; }, std::chrono::seconds(10)));
    EXPECT_TRUE(waitFor([&] { return entries("/proc/self/fd") <= descriptors; }, std::chrono::seconds(10)));
}

TEST_P(WatcherLifecycle, CanBeStoppedAndDestroyedByItsOwnCallback)
{
    for (const bool destroys : {false, true}) {
        SCOPED_TRACE(destroys);
        std::unique_ptr<VRXWatchFolder> watcher;
        const auto meddler = std::make_shared<Meddler>([&] {
            watcher->stopWatching();
            if (destroys)
                watcher.reset();
        });
        watcher = make(meddler);
        ASSERT_TRUE(watcher->startWatching());
        ASSERT_TRUE(waitFor([&] { return meddler->reloads == 1; }));
        runScript(folder.path(), "echo 1 > a");
        for (int i = 0; i < 20; ++i)
            QCoreApplication::processEvents();
        EXPECT_EQ(meddler->later, 0);
        EXPECT_EQ(watcher == nullptr, destroys);
    }
}

TEST_P(WatcherLifecycle, LetsGoOfTheDelegateOnTheMainThread)
{
    // The owner lets go while a callback runs: the watcher holds the last reference.
    std::shared_ptr<Meddler> meddler;
    std::atomic<bool> entered = false;
    std::atomic<bool> released = false;
    meddler = std::make_shared<Meddler>([&] {
        entered = true;
        while (!released)
            std::this_thread::yield();
    });
    const auto watcher = make(meddler);
    Meddler::destroyedOn = nullptr;
    ASSERT_TRUE(watcher->startWatching());
    ASSERT_TRUE(waitFor([&] { return entered.load(); }));
    meddler.reset();
    released = true;
    ASSERT_TRUE(waitFor([&] { return Meddler::destroyedOn != nullptr; }));
    EXPECT_EQ(Meddler::destroyedOn, QThread::currentThread());
    EXPECT_EQ(watcher->delegate(), nullptr);
}

TEST_P(WatcherLifecycle, CanBeUsedFromManyThreads)
{
    const auto recorder = std::make_shared<Recorder>(folder.path());
    const auto watcher = make(recorder);
    ASSERT_TRUE(watcher->startWatching());
    std::atomic<int> running = 4;
    std::vector<std::thread> users;
    for (int user = 0; user < 4; ++user)
        users.emplace_back([&, user] {
            for (int i = 0; i < 100; ++i) {
                const QString path = watcher->folderPath() + QStringLiteral("/own%1").arg(user);
                watcher->performOwnChange(path, [&] { std::ofstream(path.toStdString()) << i; });
                static_cast<void>(watcher->hasItemAtPath(path));
                watcher->URLs();
                watcher->forceChangesCheckingAtPath(watcher->folderPath());
                watcher->flush([] {});
            }
            --running;
        });
    ASSERT_TRUE(waitFor([&] { return running == 0; }));
    for (std::thread &user : users)
        user.join();
    ASSERT_TRUE(flushed(*watcher));
    EXPECT_EQ(inventoried(*watcher), onDisk(folder.path()));
    for (const std::string &line : recorder->takeLines())
        ADD_FAILURE() << "own change reported: " << line;
}

INSTANTIATE_TEST_SUITE_P(, WatcherLifecycle, testing::Values(WatchBackend::Fanotify, WatchBackend::Inotify),
                         [](const auto &info) { return backendName(info.param).toStdString(); });

} // namespace
