// SPDX-License-Identifier: MIT
#include "tests/support/LiveStore.h"
#include "tests/support/QtPrinters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using test::LiveStore;
using test::namesOf;
using test::waitFor;

/// A store in a process of its own.
class Worker
{
public:
    template <class... Arguments>
    explicit Worker(const Arguments &...arguments) : m_process({STORE_WORKER, arguments...})
    {
    }
    ~Worker() { kill(); }
    Worker(const Worker &) = delete;
    Worker &operator=(const Worker &) = delete;

    [[nodiscard]] bool finish()
    {
        return waitFor([&] { return m_process.status().has_value(); }) && m_process.status() == 0;
    }
    [[nodiscard]] bool hasPrinted()
    {
        return waitFor([&] { return m_process.hasOutput(); });
    }
    [[nodiscard]] QStringList lines()
    {
        QStringList lines;
        for (std::string line; !(line = m_process.receive()).empty();)
            lines.append(QString::fromStdString(line));
        return lines;
    }
    void kill() { m_process.kill(); }

private:
    test::ChildProcess m_process;
};

TEST(Saving, KillingASavingProcessNeverCostsAFile)
{
    LiveStore store;
    store.writePreset(u"Victim"_s);
    std::mt19937 random(20261121);
    for (int round = 0; round < 500; ++round) {
        Worker worker("save", store.dataDirectory().toStdString());
        ASSERT_TRUE(worker.hasPrinted()); // it is saving
        // The moment of the kill is what this test is about: any will do.
        ::usleep(static_cast<useconds_t>(random() % 3000));
        worker.kill();
        ASSERT_TRUE(store.onDisk("Victim")) << "round " << round;
    }
    QStringList visible;
    for (const QString &name : store.fileNames()) {
        if (!name.startsWith(u'.'))
            visible.append(name);
    }
    EXPECT_EQ(visible, QStringList{u"Victim.json"_s});
    // The next start cleans up; a temporary file in use would have stayed, and so does a preset's file.
    store.runElsewhere(u"cp Victim.json .vantle-abcdefgh.json"_s);
    const auto manager = store.makeManager();
    ASSERT_TRUE(manager);
    manager->waitForFileTasks();
    EXPECT_EQ(store.fileNames(), (QStringList{u".vantle-abcdefgh.json"_s, u"Victim.json"_s}));
}

TEST(Saving, TwoStoresOnOneFolderAgreeInTheEnd)
{
    for (const bool doNamesCollide : {false, true}) {
        LiveStore store;
        {
            Worker one("churn", store.dataDirectory().toStdString(), "one", "1");
            Worker two("churn", store.dataDirectory().toStdString(), doNamesCollide ? "one" : "two", "2");
            const auto manager = store.makeManager();
            ASSERT_TRUE(manager);
            ASSERT_TRUE(one.finish());
            ASSERT_TRUE(two.finish());
            ASSERT_TRUE(LiveStore::settle(*manager));
            QStringList files;
            for (const QString &name : namesOf(*manager))
                files.append(name + ".json"_L1);
            files.sort();
            EXPECT_EQ(files, store.fileNames()) << "a third store's list is the folder";
        }
        Worker fresh("list", store.dataDirectory().toStdString());
        ASSERT_TRUE(fresh.finish());
        const auto manager = store.makeManager();
        EXPECT_EQ(fresh.lines(), namesOf(*manager));
        EXPECT_EQ(store.logOf("Error loading"_L1), QStringList());
    }
}

TEST(Saving, AManagerThatGoesHasSavedEverything)
{
    LiveStore store;
    auto manager = store.makeManager();
    ASSERT_TRUE(manager);
    const auto preset = manager->addNewPreset(StreamingType::hls);
    for (qint64 bitRate = 1; bitRate <= 50; ++bitRate) {
        preset->videoSettings().first()->setBitRate(bitRate);
        manager->save(preset);
    }
    manager.reset();
    EXPECT_EQ(store.onDisk("HLS Preset")->videoSettings().first()->bitRate(), 50); // in order
}

TEST(Saving, WhoHoldsTheFoldersLockHoldsUpOneSaveForAWhile)
{
    LiveStore store;
    store.writePreset(u"A"_s);
    const auto manager = store.makeManager();
    const int held = ::open(store.folder().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(held, LOCK_EX), 0);
    for (int i = 0; i < 3; ++i)
        manager->setSelectedPreset(manager->presets().first());
    manager->waitForFileTasks();
    EXPECT_EQ(store.logOf("Another process holds the lock of "_L1).size(), 1);
    EXPECT_EQ(store.logOf("Preset Saved: A"_L1).size(), 3);
    ::close(held);
}

TEST(Saving, AFileKeepsItsMode)
{
    LiveStore store;
    store.writePreset(u"A"_s);
    ASSERT_EQ(::chmod(store.file("A.json").c_str(), 0640), 0);
    const auto manager = store.makeManager();
    manager->setSelectedPreset(manager->presetWithName(u"A"_s));
    manager->waitForFileTasks();
    struct stat status = {};
    ASSERT_EQ(::stat(store.file("A.json").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
}

TEST(Saving, ALinkIsReadAndNeverWrittenThrough)
{
    LiveStore store;
    store.writePreset(u"A"_s);
    ASSERT_TRUE(store.runElsewhere(
        u"mv A.json ../elsewhere; for n in saved renamed removed; do ln -s ../elsewhere $n.json; done"_s));
    const std::filesystem::path elsewhere = store.folder().parent_path() / "elsewhere";
    const auto before = std::filesystem::last_write_time(elsewhere);
    const auto manager = store.makeManager();
    for (const QString &name : {u"saved"_s, u"renamed"_s})
        manager->presetWithName(name)->videoSettings().first()->setBitRate(1);
    manager->save(manager->presetWithName(u"saved"_s));
    EXPECT_TRUE(manager->rename(manager->presetWithName(u"renamed"_s), u"renamed"_s, u"new name"_s));
    manager->deletePresetFile(u"removed"_s);
    manager->waitForFileTasks();
    EXPECT_EQ(store.fileNames(), (QStringList{u"new name.json"_s, u"saved.json"_s}));
    for (const char *name : {"saved", "new name"}) {
        EXPECT_FALSE(std::filesystem::is_symlink(store.file(std::string(name) + ".json")));
        EXPECT_EQ(store.onDisk(name)->videoSettings().first()->bitRate(), 1);
    }
    EXPECT_EQ(std::filesystem::last_write_time(elsewhere), before);
    EXPECT_EQ(readPresetFile(elsewhere)->videoSettings().first()->bitRate(), 4500);
}

TEST(Saving, NamesNeverLeaveTheFolder)
{
    LiveStore store;
    store.writePreset(u"A"_s);
    const auto manager = store.makeManager();
    const auto a = manager->presetWithName(u"A"_s);
    EXPECT_TRUE(manager->rename(a, u"A"_s, u"../escaped"_s));
    manager->waitForFileTasks();
    EXPECT_EQ(store.logOf("Error"_L1),
              QStringList{u"Error writing preset ../escaped: Not a valid file name"_s});
    EXPECT_EQ(store.fileNames(), QStringList{u"A.json"_s}) << "the old file stays";
    manager->deletePresetFile(u"../../x"_s);
    manager->deletePresetFile(u"missing"_s);
    manager->waitForFileTasks();
    const QString folder = QString::fromStdString(store.folder().string());
    const QString deleting = u"Error deleting file "_s + folder;
    EXPECT_EQ(store.log().mid(store.log().size() - 2),
              (QStringList{deleting + u"/../../x.json: Not a valid file name"_s,
                           deleting + u"/missing.json: No such file or directory"_s}));
    EXPECT_TRUE(manager->rename(a, a->name(), QString(250, u'n'))); // 255 bytes with the extension
    manager->waitForFileTasks();
    EXPECT_TRUE(store.onDisk(std::string(250, 'n')));
}

/// Each way in which a folder can refuse a write: one line, and the old file stays whole.
TEST(Saving, ARefusedWriteLeavesTheOldFile)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "mounting needs root";
    struct Case
    {
        const char *options;
        bool fill;
        QString reason;
    };
    for (const Case &c : {Case{"size=64k", true, u"No space left on device"_s},
                          Case{"ro", false, u"Read-only file system"_s}}) {
        LiveStore store;
        const auto folder = store.folder().string();
        if (::mount("tmpfs", folder.c_str(), "tmpfs", 0, c.fill ? c.options : nullptr) != 0)
            GTEST_SKIP() << "mounting is refused: " << std::strerror(errno);
        store.writePreset(u"A"_s);
        store.writePreset(u"C"_s);
        if (c.fill)
            store.runElsewhere(u"cat /dev/zero > filler 2>/dev/null || true"_s);
        else
            ASSERT_EQ(::mount(nullptr, folder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
        {
            const auto manager = store.makeManager();
            const auto a = manager->presetWithName(u"A"_s);
            a->videoSettings().first()->setBitRate(1);
            manager->save(a);
            manager->waitForFileTasks();
            EXPECT_EQ(store.logOf("Error"_L1), QStringList{u"Error writing preset A: "_s + c.reason});
            EXPECT_EQ(store.onDisk("A")->videoSettings().first()->bitRate(), 4500);
            EXPECT_TRUE(waitFor([&] { return manager->hasUnsavedEdits(a); }));
            if (c.fill) { // a rename that had to wait takes the old file away when it gets through
                const auto unedited = manager->presetWithName(u"C"_s);
                EXPECT_TRUE(manager->rename(a, u"A"_s, u"B"_s));
                EXPECT_TRUE(manager->rename(unedited, u"C"_s, u"D"_s));
                EXPECT_TRUE(waitFor([&] { return !manager->hasPendingSaves(); }));
                EXPECT_EQ(store.fileNames(), (QStringList{u"A.json"_s, u"D.json"_s, u"filler"_s}))
                    << "without edits nothing is written";
                ASSERT_TRUE(store.runElsewhere(u"rm filler"_s));
                EXPECT_TRUE(manager->hasUnsavedEdits(a));
                manager->save(a);
                manager->waitForFileTasks();
                EXPECT_EQ(store.fileNames(), (QStringList{u"B.json"_s, u"D.json"_s}));
            }
        }
        EXPECT_EQ(::umount(folder.c_str()), 0);
    }
}

} // namespace
} // namespace vantle
