// SPDX-License-Identifier: MIT
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "tests/support/LiveStore.h"
#include "tests/support/QtPrinters.h"

#include <gtest/gtest.h>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using test::LiveStore;
using test::namesOf;

/// Keeps a copy of the list by the row signals alone, as a list model does.
class RowMirror
{
public:
    explicit RowMirror(PresetsManager &manager) : m_manager(manager), m_names(namesOf(manager))
    {
        QObject::connect(&manager, &PresetsManager::rowInserted, &m_context,
                         [this](int row) { m_names.insert(row, m_manager.presets()[row]->name()); });
        QObject::connect(&manager, &PresetsManager::rowRemoved, &m_context,
                         [this](int row) { m_names.removeAt(row); });
        QObject::connect(&manager, &PresetsManager::rowMoved, &m_context,
                         [this](int from, int to) { m_names.move(from, to > from ? to - 1 : to); });
        QObject::connect(&manager, &PresetsManager::rowsReset, &m_context,
                         [this] { m_names = namesOf(m_manager); });
        QObject::connect(&manager, &PresetsManager::presetsChanged, &m_context, [this] {
            for (int row = 0; row < m_names.size() && row < m_manager.presets().size(); ++row)
                m_names[row] = m_manager.presets()[row]->name();
            ++m_announcements;
        });
    }

    [[nodiscard]] const QStringList &names() const { return m_names; }
    [[nodiscard]] int announcements() const { return m_announcements; }

private:
    PresetsManager &m_manager;
    QObject m_context;
    QStringList m_names;
    int m_announcements = 0;
};

TEST(PresetOperations, NewPresetsAreNamedListedSelectedAndWritten)
{
    LiveStore store;
    const auto manager = store.makeManager();
    ASSERT_TRUE(manager);
    for (const StreamingType type : streamingTypes().values())
        manager->addNewPreset(type);
    manager->addNewPreset(StreamingType::hls);
    const auto third = manager->addNewPreset(StreamingType::hls);
    EXPECT_EQ(manager->selectedPreset(), third);
    EXPECT_EQ(namesOf(*manager),
              (QStringList{u"Facebook Preset"_s, u"HLS Preset"_s, u"HLS Preset 2"_s, u"HLS Preset 3"_s,
                           u"RTMP Preset"_s, u"SRT Preset"_s, u"Wowza Preset"_s, u"YouTube Preset"_s}));
    manager->remove(manager->presetWithName(u"HLS Preset 2"_s));
    EXPECT_EQ(manager->selectedPreset(), third);
    EXPECT_EQ(manager->addNewPreset(StreamingType::hls)->name(), u"HLS Preset 2"_s);
    manager->waitForFileTasks();
    for (const auto &preset : manager->presets()) {
        const auto written = store.onDisk(preset->name().toStdString());
        ASSERT_TRUE(written) << preset->name().toStdString();
        EXPECT_EQ(written->type(), preset->type());
    }
    EXPECT_EQ(store.logOf("Error"_L1), QStringList());
}

TEST(PresetOperations, QueriesByNameAndKind)
{
    LiveStore store;
    for (const QString &name : {u"Caf\u00E9"_s, u"show"_s, u"Show"_s})
        store.writePreset(name);
    store.writePreset(u"Push"_s, StreamingType::rtmp);
    store.writePreset(u"Tube"_s, StreamingType::youTube);
    const auto manager = store.makeManager();
    ASSERT_TRUE(manager);
    EXPECT_TRUE(manager->presetWithName(u"Cafe\u0301"_s));
    EXPECT_EQ(manager->presetWithName(u"show"_s)->name(), u"show"_s);
    EXPECT_FALSE(manager->presetWithName(u"SHOW"_s));
    EXPECT_EQ(manager->presetsWithTypeName(u"RTMP"_s).size(), 1);
    EXPECT_EQ(manager->presetsWithTypeName(u"HLS"_s).size(), 3);
    EXPECT_TRUE(manager->presetsWithTypeName(u"rtmp"_s).isEmpty());
    EXPECT_FALSE(manager->selectedPreset());
}

TEST(PresetOperations, RenameRules)
{
    LiveStore store;
    store.writePreset(u"A"_s);
    store.writePreset(u"B"_s);
    const auto manager = store.makeManager();
    ASSERT_TRUE(manager);
    const auto a = manager->presetWithName(u"A"_s);
    struct Case
    {
        QString wanted;
        bool isAccepted;
        QString name; // afterwards
    };
    const Case cases[] = {{u" \n "_s, false, u"A"_s},
                          {u"B"_s, false, u"A"_s},
                          {u" A "_s, true, u"A"_s},
                          {u"  b\n"_s, true, u"b"_s},
                          {u"a.b.json"_s, true, u"a.b.json"_s},
                          {u"Caf\u00E9"_s, true, u"Caf\u00E9"_s}};
    for (const Case &c : cases) {
        const QString before = a->name();
        EXPECT_EQ(manager->rename(a, before, c.wanted), c.isAccepted) << c.wanted.toStdString();
        EXPECT_EQ(a->name(), c.name) << c.wanted.toStdString();
    }
    // The same name in another normal form: nothing to do.
    EXPECT_TRUE(manager->rename(a, u"Caf\u00E9"_s, u"Cafe\u0301"_s));
    EXPECT_EQ(a->name(), u"Caf\u00E9"_s);
    manager->waitForFileTasks();
    EXPECT_EQ(store.fileNames(), (QStringList{u"B.json"_s, u"Caf\u00E9.json"_s}));
    EXPECT_EQ(store.logOf("Error"_L1), QStringList());
}

TEST(PresetOperations, RenamingTheSelectedPresetAnnouncesItAgain)
{
    LiveStore store;
    store.writePreset(u"A"_s);
    const auto manager = store.makeManager();
    ASSERT_TRUE(manager);
    const auto a = manager->presetWithName(u"A"_s);
    manager->setSelectedPreset(a);
    PresetsList announced;
    QObject::connect(manager.get(), &PresetsManager::selectedPresetChanged, manager.get(),
                     [&](const auto &preset) { announced.append(preset); });
    EXPECT_TRUE(manager->rename(manager->selectedPreset(), u"A"_s, u"B"_s));
    EXPECT_EQ(announced, (PresetsList{nullptr, a}));
    EXPECT_EQ(manager->selectedPreset(), a);
}

TEST(PresetOperations, DuplicateCopiesSettingsAndNothingElse)
{
    LiveStore store;
    const auto manager = store.makeManager();
    ASSERT_TRUE(manager);
    const auto source =
        std::dynamic_pointer_cast<RTMPVantlePreset>(manager->addNewPreset(StreamingType::facebook));
    source->setStreamKey(u"secret"_s);
    source->videoSettings().first()->setBitRate(1234);
    source->newAudioSettings();
    source->newAudioSettings();
    source->audioSettings()[1]->setIsDefault(true);
    // A file can flag two tracks; the copy takes the first of them.
    source->audioSettings()[2]->setDelegate({});
    source->audioSettings()[2]->setIsDefault(true);

    const auto copy = std::dynamic_pointer_cast<RTMPVantlePreset>(manager->duplicate(source));
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->name(), u"Facebook Preset copy"_s);
    EXPECT_EQ(copy->streamKey(), u""_s);
    EXPECT_EQ(copy->videoSettings().first()->bitRate(), 1234);
    EXPECT_NE(copy->videoSettings().first(), source->videoSettings().first());
    EXPECT_EQ(copy->defaultAudioSettings(), copy->audioSettings()[1]);
    copy->audioSettings()[0]->setIsDefault(true); // the delegate of the copies is the copy
    EXPECT_EQ(copy->defaultAudioSettings(), copy->audioSettings()[0]);
    EXPECT_FALSE(copy->audioSettings()[1]->isDefault());

    source->setAudioSettings({});
    EXPECT_FALSE(manager->duplicate(source)->defaultAudioSettings());
}

TEST(PresetOperations, SelectingSavesEvenWithoutAChange)
{
    LiveStore store;
    store.writePreset(u"A"_s);
    const auto manager = store.makeManager();
    ASSERT_TRUE(manager);
    const auto a = manager->presetWithName(u"A"_s);
    manager->setSelectedPreset(a);
    manager->setSelectedPreset(nullptr);
    manager->setSelectedPreset(a);
    manager->setSelectedPreset(a);
    manager->setSelectedPreset(makePreset(StreamingType::hls, u"stranger"_s));
    EXPECT_EQ(manager->selectedPreset(), a);
    manager->waitForFileTasks();
    EXPECT_EQ(store.logOf("Preset Saved: A"_L1).size(), 3);
    EXPECT_FALSE(manager->hasUnsavedEdits(a));
    a->videoSettings().first()->setBitRate(777);
    EXPECT_TRUE(manager->hasUnsavedEdits(a));
}

TEST(PresetOperations, RowSignalsTellTheWholeStory)
{
    LiveStore store;
    for (const QString &name : {u"m"_s, u"B"_s, u"z"_s, u"é"_s})
        store.writePreset(name);
    const auto manager = store.makeManager();
    ASSERT_TRUE(manager);
    const RowMirror mirror(*manager);
    manager->addNewPreset(StreamingType::hls);
    manager->duplicate(manager->presetWithName(u"B"_s));
    EXPECT_EQ(mirror.announcements(), 2);
    EXPECT_TRUE(manager->rename(manager->presetWithName(u"B"_s), u"B"_s, u"zz"_s));
    EXPECT_TRUE(manager->rename(manager->presetWithName(u"z"_s), u"z"_s, u"A"_s));
    manager->remove(manager->presetWithName(u"m"_s));
    manager->waitForFileTasks();
    EXPECT_TRUE(store.runElsewhere(u"cp A.json l.json; rm *\u00E9.json"_s));
    EXPECT_TRUE(
        test::waitFor([&] { return mirror.names().contains(u"l"_s) && !mirror.names().contains(u"é"_s); }));
    EXPECT_EQ(namesOf(*manager), (QStringList{u"A"_s, u"B copy"_s, u"HLS Preset"_s, u"l"_s, u"zz"_s}));
    EXPECT_EQ(mirror.names(), namesOf(*manager));

    const auto renamedByItsOwner = manager->presetWithName(u"A"_s);
    const int announcements = mirror.announcements();
    renamedByItsOwner->setName(u"zzz"_s);
    manager->save(renamedByItsOwner);
    EXPECT_EQ(mirror.announcements(), announcements + 1);
    EXPECT_EQ(mirror.names().last(), u"zzz"_s);
}

TEST(PresetOperations, WithoutAFolderTheListWorksInMemory)
{
    LiveStore store; // for its log
    PresetsManager manager([] { return QStringList(); });
    EXPECT_FALSE(manager.presetsFolderURL());
    EXPECT_FALSE(manager.watchFolder());
    const auto preset = manager.addNewPreset(StreamingType::srt);
    EXPECT_EQ(manager.selectedPreset(), preset);
    EXPECT_TRUE(manager.rename(preset, preset->name(), u"X"_s));
    manager.deletePresetFile(u"X"_s);
    manager.remove(preset);
    EXPECT_FALSE(manager.selectedPreset());
    EXPECT_EQ(store.log(), QStringList());
}

} // namespace
} // namespace vantle
