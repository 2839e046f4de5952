// SPDX-License-Identifier: MIT
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SRTVantlePreset.h"
#include "tests/support/LiveStore.h"
#include "tests/support/QtPrinters.h"

#include <QtCore/QThread>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using test::LiveStore;
using test::namesOf;
using test::waitFor;

TEST(FolderStories, AFolderIsLoadedSortedByFileName)
{
    LiveStore store;
    store.writePreset(u"b"_s);
    store.writePreset(u"A"_s, StreamingType::srt);
    store.writePreset(u"a.b"_s);
    ASSERT_TRUE(
        store.runElsewhere(u"cp b.json C.JSON; cp b.json notes.txt; cp b.json .hidden.json; mkdir sub;"
                           "cp b.json sub/d.json"_s));
    const PresetsManager fresh([&] { return QStringList{store.dataDirectory()}; });
    EXPECT_TRUE(fresh.presets().isEmpty());
    EXPECT_TRUE(waitFor([&] { return fresh.isLoaded(); }));
    EXPECT_EQ(namesOf(fresh), (QStringList{u"A"_s, u"a.b"_s, u"b"_s}));
    EXPECT_FALSE(fresh.selectedPreset());
    EXPECT_EQ(fresh.presets().first()->thread(), QThread::currentThread());
    EXPECT_EQ(fresh.presets().first()->defaultAudioSettings()->thread(), QThread::currentThread());
}

/// Another process changes the folder while the list is open.
class OpenList : public testing::Test
{
protected:
    void SetUp() override
    {
        for (const QString &name : {u"A"_s, u"B"_s, u"C"_s})
            m_store.writePreset(name);
        m_manager = m_store.makeManager();
        ASSERT_TRUE(m_manager);
        m_a = m_manager->presetWithName(u"A"_s);
        m_manager->setSelectedPreset(m_a);
        m_manager->waitForFileTasks();
    }

    bool elsewhere(const QString &script)
    {
        return m_store.runElsewhere(script) && LiveStore::settle(*m_manager);
    }

    LiveStore m_store;
    std::unique_ptr<PresetsManager> m_manager;
    std::shared_ptr<VantlePreset> m_a;
};

TEST_F(OpenList, FollowsEveryWayToChangeAFile)
{
    ASSERT_TRUE(elsewhere(u"sed -i 's/4500/1111/' A.json"_s)); // by renaming into place
    EXPECT_EQ(m_a->videoSettings().first()->bitRate(), 1111);
    ASSERT_TRUE(elsewhere(u"sed 's/1111/2222/' A.json > .t; cat .t > A.json; rm .t"_s)); // in place
    EXPECT_EQ(m_a->videoSettings().first()->bitRate(), 2222);
    EXPECT_EQ(m_manager->selectedPreset(), m_a);

    ASSERT_TRUE(elsewhere(u"cp A.json D.json; mv B.json E.json; rm C.json; ln A.json F.json"_s));
    EXPECT_EQ(namesOf(*m_manager), (QStringList{u"A"_s, u"D"_s, u"E"_s, u"F"_s}));
    EXPECT_EQ(m_manager->presetWithName(u"A"_s), m_a);

    ASSERT_TRUE(elsewhere(u"mv A.json G.json"_s));
    EXPECT_FALSE(m_manager->selectedPreset());
    EXPECT_EQ(namesOf(*m_manager), (QStringList{u"D"_s, u"E"_s, u"F"_s, u"G"_s}));
    EXPECT_EQ(m_store.logOf("Error"_L1), QStringList());
}

TEST_F(OpenList, ABrokenEditLeavesThePresetAndARepairIsSeen)
{
    ASSERT_TRUE(elsewhere(u"echo '{' > A.json; echo '{' > X.json"_s));
    EXPECT_EQ(m_a->videoSettings().first()->bitRate(), 4500);
    EXPECT_EQ(namesOf(*m_manager), (QStringList{u"A"_s, u"B"_s, u"C"_s}));
    EXPECT_EQ(m_store.logOf("Error"_L1).size(), 1);
    EXPECT_TRUE(m_store.log().contains(
        u"Error loading Preset X.json: line 2, column 1: Missing a name for object member"_s))
        << m_store.log().join(u'\n').toStdString();
    ASSERT_TRUE(elsewhere(u"sed 's/4500/99/' B.json > A.json; cp B.json X.json"_s));
    EXPECT_EQ(m_a->videoSettings().first()->bitRate(), 99);
    EXPECT_TRUE(m_manager->presetWithName(u"X"_s));
}

TEST_F(OpenList, AFileOfAnotherKindReplacesTheObject)
{
    m_store.writePreset(u"A"_s, StreamingType::srt);
    // The write above is this process's own; only another one's is followed.
    ASSERT_TRUE(elsewhere(u"cp A.json .t; rm A.json; cat .t > A.json; rm .t"_s));
    const auto replaced = m_manager->presetWithName(u"A"_s);
    EXPECT_TRUE(std::dynamic_pointer_cast<SRTVantlePreset>(replaced));
    EXPECT_FALSE(m_manager->selectedPreset());
}

TEST_F(OpenList, AnUntouchedPresetDoesNotOverwriteAForeignChange)
{
    // Within the latency the store has not heard of the change yet.
    ASSERT_TRUE(m_store.runElsewhere(u"sed -i 's/4500/3333/' A.json"_s));
    m_manager->save(m_a);
    m_manager->waitForFileTasks();
    EXPECT_EQ(m_store.onDisk("A")->videoSettings().first()->bitRate(), 3333);
    EXPECT_TRUE(waitFor([&] { return m_a->videoSettings().first()->bitRate() == 3333; }));

    ASSERT_TRUE(m_store.runElsewhere(u"sed -i 's/3333/4444/' A.json"_s));
    m_a->videoSettings().first()->setBitRate(5555); // with an edit of its own, the last save wins
    m_manager->save(m_a);
    ASSERT_TRUE(LiveStore::settle(*m_manager));
    EXPECT_EQ(m_store.onDisk("A")->videoSettings().first()->bitRate(), 5555);
    EXPECT_EQ(m_a->videoSettings().first()->bitRate(), 5555);

    ASSERT_TRUE(m_store.runElsewhere(u"rm A.json"_s));
    m_manager->save(m_a);
    ASSERT_TRUE(LiveStore::settle(*m_manager));
    EXPECT_FALSE(m_manager->presetWithName(u"A"_s));
    EXPECT_FALSE(m_store.onDisk("A"));
}

TEST_F(OpenList, AFileThatJustAppearedIsNeverOverwritten)
{
    ASSERT_TRUE(m_store.runElsewhere(
        u"for n in 'HLS Preset' Z; do sed 's/4500/3333/' B.json > \"$n.json\"; done; echo { > 'SRT Preset.json'"_s));
    const auto added = m_manager->addNewPreset(StreamingType::hls);
    added->videoSettings().first()->setBitRate(1);
    m_manager->save(added);
    const auto besideBroken = m_manager->addNewPreset(StreamingType::srt);
    EXPECT_TRUE(m_manager->rename(m_a, u"A"_s, u"Z"_s));
    m_manager->setSelectedPreset(m_a);
    ASSERT_TRUE(LiveStore::settle(*m_manager));
    EXPECT_TRUE(waitFor([&] { return !m_manager->hasPendingSaves() && m_manager->presets().size() == 7; }));
    EXPECT_EQ(namesOf(*m_manager), (QStringList{u"B"_s, u"C"_s, u"HLS Preset"_s, u"HLS Preset 2"_s,
                                                u"SRT Preset 2"_s, u"Z"_s, u"Z 2"_s}));
    EXPECT_EQ(m_store.onDisk("HLS Preset")->videoSettings().first()->bitRate(), 3333);
    EXPECT_EQ(m_store.onDisk("HLS Preset 2")->videoSettings().first()->bitRate(), 1);
    EXPECT_EQ(m_store.onDisk("Z")->videoSettings().first()->bitRate(), 3333);
    EXPECT_EQ(m_a->name(), u"Z 2"_s);
    EXPECT_TRUE(m_store.onDisk("Z 2"));
    EXPECT_FALSE(m_store.onDisk("A"));
    EXPECT_EQ(besideBroken->name(), u"SRT Preset 2"_s);
    EXPECT_TRUE(std::filesystem::exists(m_store.file("SRT Preset.json")));
}

TEST_F(OpenList, AChangedFileIsNotMovedOntoOneThatJustAppeared)
{
    ASSERT_TRUE(m_store.runElsewhere(u"sed -i 's/4500/3333/' A.json; cp B.json Z.json"_s));
    EXPECT_TRUE(m_manager->rename(m_a, u"A"_s, u"Z"_s));
    EXPECT_TRUE(waitFor([&] { return !m_manager->hasPendingSaves() && m_manager->presets().size() == 4; }));
    ASSERT_TRUE(LiveStore::settle(*m_manager));
    EXPECT_EQ(namesOf(*m_manager), (QStringList{u"B"_s, u"C"_s, u"Z"_s, u"Z 2"_s}));
    EXPECT_EQ(m_store.onDisk("Z")->videoSettings().first()->bitRate(), 4500);
    EXPECT_EQ(m_store.onDisk("Z 2")->videoSettings().first()->bitRate(), 3333);
}

TEST_F(OpenList, ALinkThatLedNowhereIsFollowedAgain)
{
    ASSERT_TRUE(elsewhere(u"ln -s B.json L.json"_s));
    EXPECT_TRUE(m_manager->presetWithName(u"L"_s));
    ASSERT_TRUE(elsewhere(u"ln -s nowhere .t; mv -T .t L.json"_s));
    EXPECT_FALSE(m_manager->presetWithName(u"L"_s));
    ASSERT_TRUE(elsewhere(u"ln -s C.json .t; mv -T .t L.json"_s));
    EXPECT_TRUE(m_manager->presetWithName(u"L"_s));
}

TEST(FolderStories, APresetAddedBeforeTheFolderIsReadLeavesItsFilesAlone)
{
    LiveStore store;
    store.writePreset(u"HLS Preset"_s, StreamingType::hls, 3333);
    PresetsManager manager([&] { return QStringList{store.dataDirectory()}; });
    const auto added = manager.addNewPreset(StreamingType::hls);
    added->videoSettings().first()->setBitRate(1);
    manager.save(added);
    EXPECT_TRUE(manager.rename(added, u"HLS Preset"_s, u"Mine"_s));
    EXPECT_TRUE(waitFor([&] { return manager.isLoaded() && !manager.hasPendingSaves(); }));
    EXPECT_EQ(namesOf(manager), (QStringList{u"HLS Preset"_s, u"Mine"_s}));
    EXPECT_EQ(store.onDisk("HLS Preset")->videoSettings().first()->bitRate(), 3333);
    EXPECT_EQ(store.onDisk("Mine")->videoSettings().first()->bitRate(), 1);
}

TEST_F(OpenList, RenamingTakesAForeignChangeAlong)
{
    ASSERT_TRUE(m_store.runElsewhere(u"sed -i 's/4500/3333/' A.json"_s));
    EXPECT_TRUE(m_manager->rename(m_a, u"A"_s, u"Z"_s));
    EXPECT_TRUE(waitFor([&] { return m_a->videoSettings().first()->bitRate() == 3333; }));
    ASSERT_TRUE(LiveStore::settle(*m_manager));
    EXPECT_EQ(namesOf(*m_manager), (QStringList{u"B"_s, u"C"_s, u"Z"_s}));
    EXPECT_EQ(m_store.fileNames(), (QStringList{u"B.json"_s, u"C.json"_s, u"Z.json"_s}));
}

TEST_F(OpenList, ABrokenForeignEditSurvivesASelection)
{
    ASSERT_TRUE(elsewhere(u"echo 'half {' > A.json"_s));
    m_manager->setSelectedPreset(m_a);
    m_manager->deletePresetFile(u"B"_s);
    m_manager->setSelectedPreset(m_manager->presetWithName(u"B"_s)); // saved anew: nobody else removed it
    m_manager->waitForFileTasks();
    EXPECT_FALSE(m_store.onDisk("A"));
    EXPECT_TRUE(m_store.onDisk("B"));
}

TEST_F(OpenList, AFileOfAnotherSpellingIsNotThePresets)
{
    const QString composed = u"Caf\u00E9"_s;
    const QString decomposed = u"Cafe\u0301"_s;
    ASSERT_TRUE(
        elsewhere(u"cp A.json '"_s + composed + u".json'; echo broken > '"_s + decomposed + u".json'"_s));
    const auto cafe = m_manager->presetWithName(composed);
    ASSERT_TRUE(cafe);
    ASSERT_TRUE(elsewhere(u"echo worse > '"_s + decomposed + u".json'"_s));
    ASSERT_TRUE(elsewhere(u"rm '"_s + decomposed + u".json'"_s));
    EXPECT_EQ(m_manager->presetWithName(composed), cafe);
    ASSERT_TRUE(elsewhere(u"rm '"_s + composed + u".json'"_s));
    EXPECT_FALSE(m_manager->presetWithName(composed));
}

TEST_F(OpenList, EditsAreSavedAtTheEndWhenTheirNameTurnsOutToBeTaken)
{
    ASSERT_TRUE(elsewhere(u"echo broken > X.json"_s));
    m_a->videoSettings().first()->setBitRate(777);
    ASSERT_TRUE(m_manager->rename(m_a, u"A"_s, u"X"_s));
    m_manager.reset();
    EXPECT_EQ(m_store.fileNames(), (QStringList{u"B.json"_s, u"C.json"_s, u"X 2.json"_s, u"X.json"_s}));
    EXPECT_EQ(m_store.onDisk("X 2")->videoSettings().first()->bitRate(), 777);
}

/// Ways to change a file that an attribute or two do not tell.
TEST_F(OpenList, ChangesThatKeepSizeAndDateAreSeen)
{
    qint64 bitRate = 4500;
    for (const char *way : {"sed s/OLD/NEW/ A.json > .new; touch -r A.json .new; mv .new A.json",
                            "sed s/OLD/NEW/ A.json > .new; touch -r A.json .d; cat .new > A.json;"
                            "touch -r .d A.json; rm .new .d",
                            "mkdir t; sed s/OLD/NEW/ A.json > t/A.json; tar --mtime=@0 -C t -cf .t A.json;"
                            "tar xf .t; rm -r t .t",
                            "mkdir t; sed s/OLD/NEW/ A.json > t/A.json; tar --mtime=@0 -C t -cf .t A.json;"
                            "tar --overwrite -xf .t; rm -r t .t"}) {
        const QString script = QString::fromLatin1(way)
                                   .replace("OLD"_L1, QString::number(bitRate))
                                   .replace("NEW"_L1, QString::number(bitRate + 1));
        ASSERT_TRUE(m_store.runElsewhere(script));
        m_manager->setSelectedPreset(m_a); // within the latency: selecting must not undo it
        ASSERT_TRUE(LiveStore::settle(*m_manager));
        EXPECT_EQ(m_a->videoSettings().first()->bitRate(), ++bitRate) << way;
        EXPECT_EQ(m_store.onDisk("A")->videoSettings().first()->bitRate(), bitRate) << way;
    }
}

TEST_F(OpenList, WhatIsDoneToAFileWithoutChangingItIsNoChange)
{
    m_a->videoSettings().first()->setBitRate(100);
    ASSERT_TRUE(elsewhere(u"touch A.json; chmod 600 A.json; ln A.json .link; touch B.json; ln B.json .b"_s));
    EXPECT_EQ(m_a->videoSettings().first()->bitRate(), 100);
    int updates = 0;
    QObject::connect(m_manager.get(), &PresetsManager::presetUpdated, [&] { ++updates; });
    ASSERT_TRUE(m_store.runElsewhere(u"chmod 640 B.json C.json; ln C.json .c"_s));
    m_manager->setSelectedPreset(m_manager->presetWithName(u"B"_s)); // within the latency
    m_manager->remove(m_manager->presetWithName(u"C"_s));
    ASSERT_TRUE(LiveStore::settle(*m_manager));
    EXPECT_EQ(updates, 0);
    EXPECT_EQ(m_store.logOf("Preset Saved: B"_L1).size(), 1);
    EXPECT_EQ(m_store.fileNames().filter(u"C.json"_s), QStringList());
}

TEST_F(OpenList, AnUneditedRenameMovesTheFile)
{
    ASSERT_EQ(::chmod(m_store.file("B.json").c_str(), 0600), 0);
    ASSERT_TRUE(LiveStore::settle(*m_manager));
    const auto inodeOf = [&](const char *name) {
        struct stat status = {};
        return ::stat(m_store.file(name).c_str(), &status) == 0 ? status.st_ino : 0;
    };
    const ino_t before = inodeOf("B.json");
    EXPECT_TRUE(m_manager->rename(m_manager->presetWithName(u"B"_s), u"B"_s, u"Moved"_s));
    ASSERT_TRUE(LiveStore::settle(*m_manager));
    EXPECT_EQ(inodeOf("Moved.json"), before);
    EXPECT_EQ(m_store.log().last(), u"Preset Saved: Moved"_s);

    const auto edited = m_manager->presetWithName(u"Moved"_s);
    edited->videoSettings().first()->setBitRate(5);
    EXPECT_TRUE(m_manager->rename(edited, u"Moved"_s, u"Edited"_s));
    ASSERT_TRUE(LiveStore::settle(*m_manager));
    struct stat status = {};
    ASSERT_EQ(::stat(m_store.file("Edited.json").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U) << "as the file before";
    EXPECT_EQ(m_store.fileNames(), (QStringList{u"A.json"_s, u"C.json"_s, u"Edited.json"_s}));
    EXPECT_EQ(namesOf(*m_manager), (QStringList{u"A"_s, u"C"_s, u"Edited"_s}));
}

TEST_F(OpenList, WhatSomebodyHasJustRemovedIsNotRenamed)
{
    ASSERT_TRUE(m_store.runElsewhere(u"rm B.json; cp C.json New.json"_s)); // within the latency
    EXPECT_TRUE(m_manager->rename(m_manager->presetWithName(u"B"_s), u"B"_s, u"New"_s));
    ASSERT_TRUE(LiveStore::settle(*m_manager));
    EXPECT_TRUE(waitFor([&] { return !m_manager->hasPendingSaves(); }));
    EXPECT_EQ(namesOf(*m_manager), (QStringList{u"A"_s, u"C"_s, u"New"_s}));
}

TEST_F(OpenList, DeletingLeavesWhatSomebodyHasJustChanged)
{
    ASSERT_TRUE(m_store.runElsewhere(u"sed -i 's/4500/3333/' A.json"_s));
    m_manager->remove(m_a);
    ASSERT_TRUE(LiveStore::settle(*m_manager));
    EXPECT_TRUE(waitFor([&] { return m_manager->presetWithName(u"A"_s) != nullptr; }));
    EXPECT_EQ(m_store.onDisk("A")->videoSettings().first()->bitRate(), 3333);
    EXPECT_EQ(m_manager->failures(), QList<PresetsFailure>());
}

TEST_F(OpenList, ASaveUnlessChangedGivesWay)
{
    ASSERT_TRUE(m_store.runElsewhere(u"sed -i 's/4500/3333/' A.json"_s));
    m_a->videoSettings().first()->setBitRate(5555);
    m_manager->saveUnlessChanged(m_a);
    EXPECT_TRUE(waitFor([&] { return !m_manager->hasPendingSaves(); }));
    EXPECT_EQ(m_a->videoSettings().first()->bitRate(), 3333);
    EXPECT_FALSE(m_manager->hasUnsavedEdits(m_a));
    m_a->videoSettings().first()->setBitRate(5555);
    m_manager->saveUnlessChanged(m_a);
    EXPECT_TRUE(waitFor([&] { return !m_manager->hasPendingSaves(); }));
    EXPECT_EQ(m_store.onDisk("A")->videoSettings().first()->bitRate(), 5555);
}

TEST_F(OpenList, SelectingDoesNotBringBackWhatOthersRemoved)
{
    for (int i = 0; i < 300; ++i)
        m_store.writePreset(u"many %1"_s.arg(i));
    m_manager = m_store.makeManager();
    ASSERT_TRUE(m_store.runElsewhere(u"rm *.json"_s));
    ASSERT_TRUE(waitFor([&] { return m_manager->presets().size() < 303; }));
    EXPECT_TRUE(waitFor([&] { // while the burst is worked off
        if (!m_manager->presets().isEmpty())
            m_manager->setSelectedPreset(m_manager->presets().last());
        m_manager->waitForFileTasks();
        return m_manager->presets().isEmpty();
    }));
    EXPECT_EQ(m_store.fileNames(), QStringList());
}

TEST_F(OpenList, AForeignFileWithAListedNameIsAnotherPreset)
{
    m_manager->deletePresetFile(u"B"_s);
    m_manager->waitForFileTasks();
    ASSERT_TRUE(elsewhere(u"cp A.json B.json"_s));
    EXPECT_EQ(namesOf(*m_manager), (QStringList{u"A"_s, u"B"_s, u"B"_s, u"C"_s}));
}

TEST_F(OpenList, ObserversMayRemoveWhatIsBeingSelected)
{
    const auto b = m_manager->presetWithName(u"B"_s);
    QObject::connect(m_manager.get(), &PresetsManager::selectedPresetChanged, m_manager.get(),
                     [&](const auto &preset) { m_manager->remove(preset); });
    m_manager->setSelectedPreset(b);
    m_manager->setPresets({m_a, nullptr, m_a});
    m_manager->waitForFileTasks();
    EXPECT_EQ(m_manager->presets(), PresetsList{m_a});
    EXPECT_FALSE(m_store.onDisk("B"));
}

TEST_F(OpenList, AHalfTypedNameFoolsNobody)
{
    m_manager->beginNameEdit(m_a);
    m_a->setName(u"B"_s);
    ASSERT_TRUE(elsewhere(u"sed -i 's/4500/1111/' A.json; rm B.json"_s));
    EXPECT_EQ(m_a->videoSettings().first()->bitRate(), 1111);
    EXPECT_EQ(m_a->name(), u"B"_s);
    EXPECT_EQ(m_manager->presets(), (PresetsList{m_a, m_manager->presetWithName(u"C"_s)}));

    int endings = 0;
    QObject::connect(m_manager.get(), &PresetsManager::nameEditMustEnd, m_manager.get(),
                     [&](const auto &preset) {
                         ++endings;
                         m_manager->endNameEdit();
                         EXPECT_TRUE(m_manager->rename(preset, u"A"_s, preset->name()));
                     });
    m_manager->save(m_a);
    m_manager->waitForFileTasks();
    EXPECT_EQ(endings, 1);
    EXPECT_EQ(m_store.fileNames(), (QStringList{u"B.json"_s, u"C.json"_s}));
}

TEST_F(OpenList, TheFolderGoesAndComesBack)
{
    ASSERT_TRUE(m_store.runElsewhere(u"mv '../Streaming Presets' ../away"_s));
    EXPECT_TRUE(waitFor([&] { return m_manager->presets().isEmpty(); }));
    EXPECT_FALSE(m_manager->selectedPreset());
    m_manager->addNewPreset(StreamingType::hls);
    EXPECT_TRUE(waitFor([&] { return !m_store.logOf("Error writing preset HLS Preset: "_L1).isEmpty(); }));
    std::filesystem::rename(m_store.folder().parent_path() / "away", m_store.folder());
    EXPECT_TRUE(waitFor([&] { return m_manager->presets().size() == 4; }));
}

TEST(FolderStories, HostileFilesCostOneLineEachAndNothingElse)
{
    LiveStore store;
    store.writePreset(u"good"_s);
    store.writePreset(u"also good"_s, StreamingType::youTube);
    const auto path = [&](const char *name) { return store.file(name).string(); };
    ASSERT_EQ(::mkfifo(path("fifo.json").c_str(), 0600), 0);
    ASSERT_EQ(::symlink("loop.json", path("loop.json").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", path("dangling.json").c_str()), 0);
    ASSERT_EQ(::mkdir(path("folder.json").c_str(), 0700), 0);
    ASSERT_TRUE(store.runElsewhere(u"truncate -s 68719476736 huge.json"_s));
    ASSERT_TRUE(store.runElsewhere(u"head -c 1000000 /dev/zero | tr '\\0' '[' > nested.json"_s));
    ASSERT_TRUE(store.runElsewhere(u"cp good.json \"$(printf 'bad\\377name.json')\"; : > empty.json;"
                                   ": > \"$(printf 'two\nlines.json')\""_s));
    const int unixSocket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    path("s.json").copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(unixSocket, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    ::close(unixSocket);

    const auto manager = store.makeManager();
    ASSERT_TRUE(manager);
    EXPECT_EQ(namesOf(*manager), (QStringList{u"also good"_s, u"good"_s}));
    QStringList lines = store.logOf("Error loading Preset "_L1);
    lines.sort();
    EXPECT_EQ(lines.size(), 10) << lines.join(u'\n').toStdString();
    EXPECT_TRUE(lines.contains(u"Error loading Preset fifo.json: Not a regular file"_s));
    EXPECT_TRUE(lines.contains(u"Error loading Preset huge.json: File is larger than 16 MiB"_s));
    EXPECT_TRUE(lines.contains(u"Error loading Preset bad\uFFFDname.json: File name is not UTF-8"_s));
    EXPECT_EQ(store.logOf("Error loading Preset two\\u000alines.json: "_L1).size(), 1);
    EXPECT_TRUE(lines.contains(u"Error loading Preset loop.json: Too many levels of symbolic links"_s));
}

} // namespace
} // namespace vantle
