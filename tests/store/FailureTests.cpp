// SPDX-License-Identifier: MIT
#include "tests/support/LiveStore.h"
#include "tests/support/OtherUser.h"
#include "tests/support/QtPrinters.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using test::LiveStore;
using test::namesOf;
using test::waitFor;
using Operation = PresetsFailure::Operation;

/// Notes what a manager tells of its failures, as "+load A" and "-load A".
class Told
{
public:
    explicit Told(PresetsManager &manager)
    {
        QObject::connect(&manager, &PresetsManager::failed, [this](const auto &f) { note(u'+', f); });
        QObject::connect(&manager, &PresetsManager::recovered, [this](const auto &f) { note(u'-', f); });
    }
    [[nodiscard]] QStringList take() { return std::exchange(m_lines, {}); }

private:
    void note(QChar sign, const PresetsFailure &failure)
    {
        static const QStringList operations = {u"load "_s, u"save "_s, u"deletion "_s};
        m_lines.append(sign + operations[static_cast<int>(failure.operation)] + failure.name);
    }

    QStringList m_lines;
};

TEST(Failures, AreToldAndEndWhenWhatFailedIsMadeGood)
{
    LiveStore store;
    store.writePreset(u"A"_s);
    store.writePreset(u"B"_s);
    ASSERT_TRUE(store.runElsewhere(u"echo broken > X.json; mkdir D.json; echo broken > Y.json"_s));
    const auto manager = store.makeManager();
    EXPECT_EQ(manager->failures().size(), 3) << "complete when the folder has been read";
    Told told(*manager);
    ASSERT_TRUE(store.runElsewhere(u"cat A.json > X.json; rm Y.json"_s) && LiveStore::settle(*manager));
    EXPECT_EQ(told.take(), (QStringList{u"-load X"_s, u"-load Y"_s}));

    const auto a = manager->presetWithName(u"A"_s);
    EXPECT_TRUE(manager->rename(a, u"A"_s, u"a/b"_s));
    ASSERT_TRUE(LiveStore::settle(*manager));
    EXPECT_EQ(told.take(), QStringList{u"+save a/b"_s});
    const PresetsFailure failed = manager->failures().last();
    EXPECT_EQ(failed.reason, u"Not a valid file name"_s);
    manager->retry(failed);
    ASSERT_TRUE(LiveStore::settle(*manager));
    EXPECT_EQ(told.take(), QStringList{u"+save a/b"_s});
    EXPECT_TRUE(manager->rename(a, a->name(), u"C"_s));
    ASSERT_TRUE(LiveStore::settle(*manager));
    EXPECT_EQ(told.take(), QStringList{u"-save a/b"_s});

    manager->deletePresetFile(u"D"_s);
    manager->deletePresetFile(u"missing"_s); // a line, and nothing to be done about
    ASSERT_TRUE(LiveStore::settle(*manager));
    EXPECT_EQ(told.take(), QStringList{u"+deletion D"_s});
    std::filesystem::remove(store.file("D.json"));
    store.writePreset(u"D"_s);
    manager->retry(manager->failures().last());
    ASSERT_TRUE(LiveStore::settle(*manager));
    EXPECT_FALSE(store.onDisk("D"));
    EXPECT_EQ(manager->failures(), QList<PresetsFailure>());
    EXPECT_EQ(namesOf(*manager), (QStringList{u"B"_s, u"C"_s, u"X"_s}));
}

// What can't be looked at is nobody's file: another name would do no better, and the one after that neither.
TEST(Failures, ANameThatNoFileCanHaveIsNotChangedForAnother)
{
    LiveStore store;
    const auto manager = store.makeManager();
    Told told(*manager);
    const auto preset = manager->addNewPreset(StreamingType::hls);
    ASSERT_TRUE(LiveStore::settle(*manager));
    const QString name(251, u'y');
    EXPECT_TRUE(manager->rename(preset, preset->name(), name));
    ASSERT_TRUE(LiveStore::settle(*manager));
    EXPECT_TRUE(told.take().contains("+save "_L1 + name));
    EXPECT_EQ(manager->failures().last().reason, u"File name too long"_s);
    EXPECT_EQ(preset->name(), name);
    EXPECT_TRUE(store.onDisk("HLS Preset")) << "stays until the rename has worked";
}

TEST(Failures, ADeletionThatOthersHaveCarriedOutHasEnded)
{
    LiveStore store;
    ASSERT_TRUE(store.runElsewhere(u"mkdir D.json"_s));
    const auto manager = store.makeManager();
    Told told(*manager);
    manager->deletePresetFile(u"D"_s);
    ASSERT_TRUE(LiveStore::settle(*manager));
    ASSERT_TRUE(store.runElsewhere(u"rmdir D.json"_s) && LiveStore::settle(*manager));
    EXPECT_EQ(told.take(), (QStringList{u"+deletion D"_s, u"-load D"_s, u"-deletion D"_s}));
}

TEST(Failures, AFileThatCouldNotBeDeletedIsListedWhenOthersTouchIt)
{
    LiveStore store;
    store.writePreset(u"A"_s);
    const auto manager = store.makeManager();
    Told told(*manager);
    ASSERT_TRUE(store.runElsewhere(u"mkdir .away; mv A.json .away/A; mkdir A.json"_s)); // can't be unlinked
    manager->deletePresetFile(u"A"_s);
    ASSERT_TRUE(LiveStore::settle(*manager));
    EXPECT_EQ(told.take().filter(u"deletion"_s), QStringList{u"+deletion A"_s});
    ASSERT_TRUE(store.runElsewhere(u"rmdir A.json; mv .away/A A.json"_s) && LiveStore::settle(*manager));
    EXPECT_TRUE(waitFor([&] { return manager->presetWithName(u"A"_s) != nullptr; }));
    EXPECT_TRUE(manager->failures().isEmpty());
}

TEST(Failures, HalfAFileIsOneOnlyIfItsWriterLeavesItSo)
{
    const std::string isOpen = "exec 3> Half.json; head -c 200 A.json >&3; echo; read go; ";
    struct Case
    {
        const char *when;
        bool isThereAtStart;
        bool isOthers; // nobody can see its writer, who is given a while
    };
    for (const Case &c : {Case{"at the start", true, false}, Case{"another user's", true, true},
                          Case{"while the list is open", false, false}}) {
        for (const bool isCompleted : {true, false}) {
            SCOPED_TRACE(testing::Message() << c.when << (isCompleted ? ", completed" : ""));
            LiveStore store;
            store.writePreset(u"A"_s);
            ASSERT_EQ(::chmod(store.dataDirectory().toStdString().c_str(), 0755), 0);
            const std::string end = isCompleted ? "tail -c +201 A.json >&3" : "true";
            const auto beginWriting = [&] {
                auto writer = std::make_unique<test::ChildProcess>(
                    std::vector<std::string>{"sh", "-ec", isOpen + end}, store.folder().string());
                writer->receive();
                return writer;
            };
            auto writer = c.isThereAtStart ? beginWriting() : nullptr;
            const test::OtherUser reader(c.isOthers ? 65534 : ::geteuid());
            const auto manager = store.makeManager();
            EXPECT_EQ(manager->failures(), QList<PresetsFailure>());
            Told told(*manager);
            if (!writer)
                writer = beginWriting();
            ASSERT_TRUE(LiveStore::settle(*manager));
            EXPECT_EQ(namesOf(*manager), QStringList{u"A"_s});
            EXPECT_EQ(told.take(), QStringList());
            writer->send("go");
            ASSERT_EQ(writer->finish(), 0);
            EXPECT_TRUE(waitFor([&] { return manager->presets().size() + manager->failures().size() == 2; }));
            EXPECT_EQ(told.take(), isCompleted ? QStringList() : QStringList{u"+load Half"_s});
            EXPECT_EQ(store.logOf("Error"_L1).size(), isCompleted ? 0 : 1);
        }
    }
}

/// Another process removes what has been reported before the store reads it.
class Remover : public VRXWatchFolderDelegate
{
public:
    Remover(const LiveStore &store, std::shared_ptr<VRXWatchFolderDelegate> reader)
        : m_store(store), m_reader(std::move(reader))
    {
    }
    void watchFolderDidReloadCurrentURLs(VRXWatchFolder *folder) override
    {
        test::runScript(m_store.folder(), "rm E.json");
        m_reader->watchFolderDidReloadCurrentURLs(folder);
    }
    void watchFolderFileAddedAtURL(VRXWatchFolder *folder, const QUrl &url, bool isDirectory) override
    {
        test::runScript(m_store.folder(), "rm " + url.fileName().toStdString());
        m_reader->watchFolderFileAddedAtURL(folder, url, isDirectory);
    }
    void watchFolderFileUpdatedAtURL(VRXWatchFolder *folder, const QUrl &url, bool isDirectory) override
    {
        test::runScript(m_store.folder(), "rm " + url.fileName().toStdString());
        m_reader->watchFolderFileUpdatedAtURL(folder, url, isDirectory);
    }
    void watchFolderFileRemovedAtURL(VRXWatchFolder *folder, const QUrl &url, bool isDirectory) override
    {
        m_reader->watchFolderFileRemovedAtURL(folder, url, isDirectory);
    }

private:
    const LiveStore &m_store;
    const std::shared_ptr<VRXWatchFolderDelegate> m_reader;
};

TEST(Failures, AFileThatIsGoneBeforeItIsReadIsNone)
{
    LiveStore store;
    for (const QString &name : {u"A"_s, u"B"_s})
        store.writePreset(name);
    const auto manager = store.makeManager();
    Told told(*manager);
    VRXWatchFolder &watcher = *manager->watchFolder();
    const auto remover = std::make_shared<Remover>(store, watcher.delegate());
    watcher.setDelegate(remover);
    ASSERT_TRUE(store.runElsewhere(u"cp A.json D.json; sed -i s/4500/1/ B.json"_s));
    EXPECT_TRUE(waitFor([&] { return store.fileNames() == QStringList{u"A.json"_s}; }));
    watcher.stopWatching();
    ASSERT_TRUE(store.runElsewhere(u"cp A.json E.json"_s));
    ASSERT_TRUE(watcher.startWatching());
    ASSERT_TRUE(waitFor([&] { return !store.fileNames().contains(u"E.json"_s); }));
    ASSERT_TRUE(LiveStore::settle(*manager));
    EXPECT_EQ(namesOf(*manager), (QStringList{u"A"_s, u"A"_s})) << "what is loaded again is added";
    EXPECT_EQ(told.take(), QStringList());
    EXPECT_EQ(store.logOf("Error"_L1), QStringList());
}

TEST(Failures, AFileThatBecomesReadableIsLoaded)
{
    LiveStore store;
    store.writePreset(u"A"_s);
    ASSERT_EQ(::chmod(store.file("A.json").c_str(), 0), 0);
    ASSERT_EQ(::chmod(store.dataDirectory().toStdString().c_str(), 0755), 0);
    std::unique_ptr<PresetsManager> manager;
    {
        const test::OtherUser nobody(65534); // root would be refused nothing
        manager = store.makeManager();
    }
    ASSERT_EQ(manager->failures().size(), 1);
    EXPECT_EQ(manager->failures().first().reason, u"Permission denied"_s);
    ASSERT_TRUE(store.runElsewhere(u"chmod 644 A.json"_s) && LiveStore::settle(*manager));
    EXPECT_TRUE(manager->presetWithName(u"A"_s));
    EXPECT_TRUE(manager->failures().isEmpty());
}

} // namespace
} // namespace vantle
