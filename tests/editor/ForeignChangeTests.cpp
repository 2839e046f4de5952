// SPDX-License-Identifier: MIT
#include "VantlePresets/model/SRTVantlePreset.h"
#include "tests/editor/OpenEditor.h"

#include <QtWidgets/QComboBox>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using test::namesOf;

/// Another process changes the folder while the user is at work.
class AtWork : public test::OpenEditor
{
protected:
    void SetUp() override
    {
        for (const QString &name : {u"Alpha"_s, u"Beta"_s, u"Delta"_s})
            m_store.writePreset(name);
        open();
        clickRow(u"Beta"_s);
    }
};

TEST_F(AtWork, TypedTextStaysAndGoesIntoTheNewObjects)
{
    auto *name = control<QLineEdit>("trackName");
    auto *bitRate = control<QLineEdit>("bitRate");
    enter(name);
    type(u"Ger"_s);
    const auto before = m_manager->selectedPreset()->audioSettings().first();
    ASSERT_TRUE(elsewhere(u"sed -i 's/4500/3333/; s/\"English\"/\"Elsewhere\"/' Beta.json"_s));
    const auto after = m_manager->selectedPreset()->audioSettings().first();
    ASSERT_NE(before, after);
    EXPECT_TRUE(name->hasFocus());
    EXPECT_EQ(bitRate->text(), u"3333"_s);
    EXPECT_EQ(name->text(), u"Ger"_s);
    type(u"man"_s);
    EXPECT_EQ(name->text(), u"German"_s);
    EXPECT_EQ(after->trackName(), u"German"_s);
    EXPECT_EQ(before->trackName(), u"Ger"_s) << "the old object is out of use";
    clickRow(u"Alpha"_s);
    EXPECT_EQ(onDisk("Beta")->audioSettings().first()->trackName(), u"German"_s);
    EXPECT_EQ(onDisk("Beta")->videoSettings().first()->bitRate(), 3333);
}

TEST_F(AtWork, TextThatWasTypedBeforeTheChangeIsSavedWithoutAnotherKey)
{
    enter(control<QLineEdit>("trackName"));
    type(u"German"_s);
    ASSERT_TRUE(elsewhere(u"sed -i 's/4500/3333/; s/\"English\"/\"Elsewhere\"/' Beta.json"_s));
    clickRow(u"Alpha"_s);
    EXPECT_EQ(onDisk("Beta")->audioSettings().first()->trackName(), u"German"_s);
}

TEST_F(AtWork, AnOpenRenameOutlivesWhateverDoesNotConcernIt)
{
    press(Qt::Key_F2);
    type(u"Zul"_s);
    ASSERT_TRUE(elsewhere(u"mv Alpha.json Omega.json; rm Delta.json; cp Omega.json Aaa.json;"
                          "sed -i 's/4500/3333/' Beta.json"_s));
    ASSERT_TRUE(nameField());
    EXPECT_EQ(nameField()->text(), u"Zul"_s);
    EXPECT_EQ(m_manager->selectedPreset()->videoSettings().first()->bitRate(), 3333);
    // A reload of the whole list (its folder went and came back) takes all fields with it for a moment.
    m_manager->setPresets(m_manager->presets());
    turn();
    ASSERT_TRUE(nameField());
    type(u"u"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(namesOf(*m_manager), (QStringList{u"Aaa"_s, u"Omega"_s, u"Zulu"_s}));
    m_manager->waitForFileTasks();
    EXPECT_EQ(m_store.fileNames(), (QStringList{u"Aaa.json"_s, u"Omega.json"_s, u"Zulu.json"_s}));
    EXPECT_EQ(onDisk("Zulu")->videoSettings().first()->bitRate(), 3333);
}

TEST_F(AtWork, ARowThatDisappearsTakesItsRenameWithIt)
{
    press(Qt::Key_F2);
    type(u"Zulu"_s);
    ASSERT_TRUE(elsewhere(u"mv Beta.json Moved.json"_s));
    EXPECT_FALSE(nameField());
    EXPECT_FALSE(dialog());
    EXPECT_FALSE(form());
    clickRow(u"Alpha"_s);
    m_manager->waitForFileTasks();
    EXPECT_EQ(m_store.fileNames(), (QStringList{u"Alpha.json"_s, u"Delta.json"_s, u"Moved.json"_s}));
    press(Qt::Key_F2);
    type(u"Works"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(namesOf(*m_manager), (QStringList{u"Delta"_s, u"Moved"_s, u"Works"_s}));
}

TEST_F(AtWork, APresetThatIsDeletedWhileTheUserTypesLeavesNoFileBehind)
{
    enter(control<QLineEdit>("bitRate"));
    type(u"12"_s);
    ASSERT_TRUE(elsewhere(u"rm Beta.json"_s));
    EXPECT_FALSE(form());
    clickRow(u"Delta"_s);
    window().close();
    m_manager->waitForFileTasks();
    EXPECT_EQ(m_store.fileNames(), (QStringList{u"Alpha.json"_s, u"Delta.json"_s}));
}

TEST_F(AtWork, AFileOfAnotherKindChangesTheForm)
{
    ASSERT_TRUE(elsewhere(u"sed 's/\"HLS\"/\"SRT\"/; s/^{/{\"streamingURL\":\"h\",\"portNumber\":1,"
                          "\"authenticate\":false,/' Beta.json > .t; mv .t Beta.json"_s));
    EXPECT_FALSE(form()) << "another class is another preset";
    clickRow(u"Beta"_s);
    ASSERT_TRUE(form());
    EXPECT_TRUE(control<QLineEdit>("pid"));

    const auto youTube = m_manager->addNewPreset(T::youTube);
    turn();
    EXPECT_TRUE(control<QLineEdit>("application"));
    ASSERT_TRUE(elsewhere(u"sed -i 's/\"YouTube\",/\"RTMP\",/' 'YouTube Preset.json'"_s));
    EXPECT_EQ(m_manager->selectedPreset(), youTube);
    EXPECT_EQ(youTube->type(), T::rtmp);
    EXPECT_FALSE(control<QLineEdit>("application")) << "the same class goes on in the form of its new kind";
    EXPECT_TRUE(control<QLineEdit>("trackName"));
}

} // namespace
} // namespace vantle
