// SPDX-License-Identifier: MIT
#include "tests/editor/OpenEditor.h"

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using test::LiveStore;
using test::namesOf;
using test::waitFor;

class Rename : public test::OpenEditor
{
protected:
    void SetUp() override
    {
        for (const QString &name : {u"Alpha"_s, u"Beta"_s, u"Delta"_s})
            m_store.writePreset(name);
        open();
    }

    /// Types over the name of the preset.
    void retype(const QString &from, const QString &to)
    {
        clickRow(from);
        press(Qt::Key_F2);
        ASSERT_TRUE(nameField());
        EXPECT_EQ(nameField()->text(), from);
        nameField()->selectAll();
        press(Qt::Key_Delete);
        type(to);
    }

    [[nodiscard]] QStringList files()
    {
        m_manager->waitForFileTasks();
        return m_store.fileNames();
    }
};

TEST_F(Rename, TypingShowsEverywhereAndTheFileFollowsAtTheEnd)
{
    retype(u"Beta"_s, u"Zulu  "_s);
    const auto preset = m_manager->selectedPreset();
    EXPECT_EQ(preset->name(), u"Zulu  "_s);
    EXPECT_EQ(window().windowTitle(), u"Zulu  "_s);
    EXPECT_EQ(m_manager->rowOf(preset), 1) << "the row stays until the edit has ended";
    EXPECT_EQ(files(), (QStringList{u"Alpha.json"_s, u"Beta.json"_s, u"Delta.json"_s}));
    press(Qt::Key_Return);
    EXPECT_FALSE(nameField());
    EXPECT_EQ(namesOf(*m_manager), (QStringList{u"Alpha"_s, u"Delta"_s, u"Zulu"_s}));
    EXPECT_EQ(highlightedName(), u"Zulu"_s);
    EXPECT_EQ(files(), (QStringList{u"Alpha.json"_s, u"Delta.json"_s, u"Zulu.json"_s}));
}

TEST_F(Rename, EnterAndADoubleClickBeginItAndEscapeUndoesIt)
{
    clickRow(u"Beta"_s);
    press(Qt::Key_Return);
    ASSERT_TRUE(nameField());
    type(u"Other"_s);
    EXPECT_EQ(selectedName(), u"Other"_s);
    press(Qt::Key_Escape);
    EXPECT_FALSE(nameField());
    EXPECT_EQ(selectedName(), u"Beta"_s);
    EXPECT_TRUE(list().hasFocus());

    clickRow(u"Delta"_s);
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, rowRect(u"Delta"_s).center());
    ASSERT_TRUE(waitFor([&] { return nameField() != nullptr; }));
    press(Qt::Key_End);
    press(Qt::Key_Backspace);
    EXPECT_EQ(m_manager->presets().size(), 3);
    EXPECT_EQ(selectedName(), u"Delt"_s) << "Backspace and Delete work on the text";
    press(Qt::Key_Escape);
    EXPECT_EQ(files(), (QStringList{u"Alpha.json"_s, u"Beta.json"_s, u"Delta.json"_s}));
    EXPECT_FALSE(dialog());
}

TEST_F(Rename, NamesThatAreRefusedComeBackWithAnAlert)
{
    for (const QString &name : {u"Alpha"_s, u" Delta "_s, QString(), u"   "_s}) {
        retype(u"Beta"_s, name);
        press(Qt::Key_Return);
        ASSERT_TRUE(dialog()) << name.toStdString();
        EXPECT_EQ(dialog()->text(), u"Rename Failed"_s);
        EXPECT_EQ(dialog()->informativeText(), u"This name is invalid or already taken."_s);
        ASSERT_EQ(dialog()->buttons().size(), 1);
        EXPECT_EQ(selectedName(), u"Beta"_s);
        EXPECT_EQ(highlightedName(), u"Beta"_s);
        press(Qt::Key_Return);
        EXPECT_FALSE(dialog());
        EXPECT_FALSE(nameField());
    }
    EXPECT_EQ(files(), (QStringList{u"Alpha.json"_s, u"Beta.json"_s, u"Delta.json"_s}));
}

TEST_F(Rename, AddedBlanksAndAnUntouchedNameChangeNothing)
{
    retype(u"Beta"_s, u"  Beta "_s);
    press(Qt::Key_Tab);
    EXPECT_EQ(selectedName(), u"Beta"_s);
    LiveStore::settle(*m_manager);
    const auto saves = m_store.logOf("Preset Saved"_L1).size();
    press(Qt::Key_F2);
    press(Qt::Key_Return);
    LiveStore::settle(*m_manager);
    EXPECT_EQ(m_store.logOf("Preset Saved"_L1).size(), saves);
    EXPECT_FALSE(dialog());
}

TEST_F(Rename, TheClickThatEndsItMeetsTheRowsThatTheUserSaw)
{
    retype(u"Alpha"_s, u"Zulu"_s);
    const QPoint delta = rowRect(u"Delta"_s).center();
    // The window system's way: the focus moves first, then the list gets the press.
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, delta);
    turn();
    EXPECT_EQ(selectedName(), u"Delta"_s);
    EXPECT_EQ(namesOf(*m_manager), (QStringList{u"Beta"_s, u"Delta"_s, u"Zulu"_s}));
    EXPECT_EQ(files(), (QStringList{u"Beta.json"_s, u"Delta.json"_s, u"Zulu.json"_s}));
}

TEST_F(Rename, TheListGoesAlongWithTheRow)
{
    for (int i = 0; i < 40; ++i)
        m_manager->addNewPreset(T::hls);
    m_manager->setSelectedPreset(nullptr);
    turn();
    QScrollBar *bar = list().verticalScrollBar();
    bar->setValue(0);
    retype(u"Alpha"_s, u"Zulu"_s);
    press(Qt::Key_Return);
    EXPECT_TRUE(list().viewport()->rect().contains(rowRect(u"Zulu"_s)));
    retype(u"Zulu"_s, u"Alpha"_s);
    press(Qt::Key_Return);
    EXPECT_TRUE(list().viewport()->rect().contains(rowRect(u"Alpha"_s)));
    // A click on another row keeps that one in sight.
    retype(u"Alpha"_s, u"Zulu"_s);
    clickRow(u"Beta"_s);
    turn();
    EXPECT_EQ(m_manager->rowOf(m_manager->presetWithName(u"Zulu"_s)), 42);
    EXPECT_EQ(bar->value(), 0);
}

TEST_F(Rename, OperationsAndSavesEndItFirst)
{
    retype(u"Alpha"_s, u"One"_s);
    m_manager->saveSelectedPreset();
    turn();
    EXPECT_FALSE(nameField());
    EXPECT_EQ(files(), (QStringList{u"Beta.json"_s, u"Delta.json"_s, u"One.json"_s}));

    retype(u"Beta"_s, u"Two"_s);
    const auto beta = m_manager->selectedPreset();
    m_manager->setSelectedPreset(m_manager->presetWithName(u"Delta"_s)); // the host's doing
    turn();
    EXPECT_FALSE(nameField());
    EXPECT_EQ(beta->name(), u"Two"_s);
    EXPECT_EQ(files(), (QStringList{u"Delta.json"_s, u"One.json"_s, u"Two.json"_s}));

    retype(u"One"_s, u"Three"_s);
    window().close();
    EXPECT_EQ(files(), (QStringList{u"Delta.json"_s, u"Three.json"_s, u"Two.json"_s}));
}

TEST_F(Rename, AClickInTheFormKeepsTheFormAndTheFocus)
{
    retype(u"Alpha"_s, u"Zulu"_s);
    const auto *before = form();
    auto *field = control<QLineEdit>("bitRate");
    enter(field);
    EXPECT_EQ(form(), before);
    EXPECT_TRUE(field->hasFocus());
    type(u"77"_s);
    EXPECT_EQ(m_manager->selectedPreset()->videoSettings().first()->bitRate(), 77);
    EXPECT_EQ(selectedName(), u"Zulu"_s);
    EXPECT_EQ(files(), (QStringList{u"Beta.json"_s, u"Delta.json"_s, u"Zulu.json"_s}));
}

} // namespace
} // namespace vantle
