// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/NotificationCenter.h"
#include "VantlePresets/editor/PresetsListDelegate.h"
#include "tests/editor/OpenEditor.h"

#include <QtTest/QAbstractItemModelTester>
#include <QtWidgets/QMenu>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using test::LiveStore;
using test::namesOf;
using test::waitFor;

class ListOfPresets : public test::OpenEditor
{
protected:
    void SetUp() override
    {
        for (const QString &name : {u"Alpha"_s, u"Beta"_s, u"Bravo"_s, u"Delta"_s})
            m_store.writePreset(name);
        open();
    }

    [[nodiscard]] QPoint deleteButton(const QString &name) const
    {
        return PresetsListDelegate::deleteButton(rowRect(name), Qt::LeftToRight).center();
    }
};

TEST_F(ListOfPresets, ItsModelKeepsTheRulesOfModelsThroughAllChanges)
{
    const QAbstractItemModelTester tester(list().model(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    clickRow(u"Beta"_s);
    const auto added = m_manager->addNewPreset(T::srt);
    EXPECT_TRUE(m_manager->rename(added, added->name(), u"Aaa"_s));
    m_manager->duplicate(added);
    m_manager->remove(m_manager->presetWithName(u"Beta"_s));
    ASSERT_TRUE(elsewhere(u"mv Delta.json 1.json; cp 1.json Zulu.json; rm Alpha.json"_s));
    const PresetsList reversed = m_manager->presets();
    m_manager->setPresets({reversed.last(), reversed.first()});
    QStringList shown;
    for (int row = 0; row < list().model()->rowCount(); ++row)
        shown.append(list().model()->index(row, 0).data().toString());
    EXPECT_EQ(shown, namesOf(*m_manager));
    EXPECT_EQ(shown, (QStringList{u"1"_s, u"Zulu"_s}));
}

TEST_F(ListOfPresets, IsWorkedWithArrowsAndTypeAhead)
{
    list().setFocus();
    press(Qt::Key_Down);
    EXPECT_EQ(selectedName(), u"Alpha"_s);
    press(Qt::Key_Down);
    EXPECT_EQ(selectedName(), u"Beta"_s);
    press(Qt::Key_End);
    EXPECT_EQ(selectedName(), u"Delta"_s);
    type(u"br"_s);
    EXPECT_EQ(selectedName(), u"Bravo"_s);
    EXPECT_EQ(window().windowTitle(), u"Bravo"_s);
    EXPECT_TRUE(form());
}

TEST_F(ListOfPresets, DeletingSelectsTheRowAbove)
{
    const struct
    {
        QString deleted;
        QString selectedNext;
    } cases[] = {
        {u"Bravo"_s, u"Beta"_s}, {u"Alpha"_s, u"Beta"_s}, {u"Delta"_s, u"Beta"_s}, {u"Beta"_s, QString()}};
    for (const auto &c : cases) {
        clickRow(c.deleted);
        press(Qt::Key_Delete);
        ASSERT_TRUE(dialog());
        EXPECT_EQ(dialog()->text(),
                  u"Are you sure you want to delete this preset?\nThis operation cannot be undone."_s);
        EXPECT_EQ(dialog()->informativeText(), c.deleted);
        clickInDialog(u"Delete"_s);
        EXPECT_EQ(selectedName(), c.selectedNext);
        EXPECT_EQ(highlightedName(), c.selectedNext);
        EXPECT_TRUE(waitFor([&] { return list().hasFocus(); }));
    }
    m_manager->waitForFileTasks();
    EXPECT_EQ(m_store.fileNames(), QStringList());
    EXPECT_FALSE(form());
    EXPECT_EQ(window().windowTitle(), u"Vantle"_s);
}

TEST_F(ListOfPresets, CancelAndAnEmptySelectionDeleteNothing)
{
    list().setFocus();
    press(Qt::Key_Delete);
    EXPECT_FALSE(dialog());
    clickRow(u"Beta"_s);
    press(Qt::Key_Delete);
    press(Qt::Key_Escape);
    EXPECT_FALSE(dialog());
    press(Qt::Key_Delete);
    clickInDialog(u"Cancel"_s);
    EXPECT_EQ(m_manager->presets().size(), 4);
    EXPECT_TRUE(waitFor([&] { return list().hasFocus(); }));
}

TEST_F(ListOfPresets, TheRowsButtonAsksForItsRowAndLeavesTheSelection)
{
    clickRow(u"Delta"_s);
    m_manager->selectedPreset()->videoSettings().first()->setBitRate(777);
    click(list().viewport(), deleteButton(u"Beta"_s));
    EXPECT_EQ(selectedName(), u"Delta"_s);
    clickInDialog(u"Delete"_s);
    EXPECT_EQ(namesOf(*m_manager), (QStringList{u"Alpha"_s, u"Bravo"_s, u"Delta"_s}));
    EXPECT_EQ(selectedName(), u"Alpha"_s);
    // The selection went on from Delta, whose edit is not lost.
    EXPECT_EQ(onDisk("Delta")->videoSettings().first()->bitRate(), 777);

    QTest::mousePress(list().viewport(), Qt::LeftButton, {}, deleteButton(u"Bravo"_s));
    QTest::mouseRelease(list().viewport(), Qt::LeftButton, {}, deleteButton(u"Delta"_s));
    EXPECT_FALSE(dialog());
}

TEST_F(ListOfPresets, ThePresetOfAnOpenConfirmationMayGoElsewhere)
{
    clickRow(u"Bravo"_s);
    press(Qt::Key_Delete);
    ASSERT_TRUE(elsewhere(u"rm Bravo.json"_s));
    EXPECT_EQ(selectedName(), QString());
    clickInDialog(u"Delete"_s);
    EXPECT_EQ(namesOf(*m_manager), (QStringList{u"Alpha"_s, u"Beta"_s, u"Delta"_s}));
    EXPECT_EQ(selectedName(), u"Alpha"_s);
}

TEST_F(ListOfPresets, AConfirmationDeletesThePresetThatItWasOpenedFor)
{
    clickRow(u"Bravo"_s);
    press(Qt::Key_Delete);
    press(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(m_manager->presets().size(), 4) << "the dialog has the keys";
    m_manager->setSelectedPreset(m_manager->presetWithName(u"Delta"_s)); // the host's doing
    clickInDialog(u"Delete"_s);
    EXPECT_EQ(namesOf(*m_manager), (QStringList{u"Alpha"_s, u"Beta"_s, u"Delta"_s}));
}

TEST_F(ListOfPresets, HasAContextMenu)
{
    clickRow(u"Alpha"_s);
    QContextMenuEvent event(QContextMenuEvent::Mouse, rowRect(u"Beta"_s).center(), QCursor::pos());
    QCoreApplication::sendEvent(list().viewport(), &event);
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    ASSERT_EQ(menu->actions().size(), 2);
    EXPECT_EQ(menu->actions()[0]->text(), u"Duplicate"_s);
    EXPECT_EQ(menu->actions()[1]->text(), u"Delete"_s);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(selectedName(), u"Beta copy"_s);
    EXPECT_EQ(highlightedName(), u"Beta copy"_s);
}

TEST_F(ListOfPresets, ShiftF10OpensTheMenuOfTheRow)
{
    clickRow(u"Beta"_s);
    press(Qt::Key_F10, Qt::ShiftModifier);
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    EXPECT_EQ(menu->actions().value(0)->text(), u"Duplicate"_s);
    menu->close();
}

TEST_F(ListOfPresets, ControlDThatIsHeldMakesOneDuplicate)
{
    clickRow(u"Beta"_s);
    const auto count = m_manager->presets().size();
    press(Qt::Key_D, Qt::ControlModifier);
    for (int i = 0; i < 20; ++i) {
        QKeyEvent repeat(QEvent::KeyPress, Qt::Key_D, Qt::ControlModifier, QString(), true);
        QCoreApplication::sendEvent(QGuiApplication::focusWindow(), &repeat);
        // As X servers send it, and the toolkit does not always see through: both of one moment.
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_D, Qt::ControlModifier);
        QKeyEvent press(QEvent::KeyPress, Qt::Key_D, Qt::ControlModifier);
        release.setTimestamp(1000 + 40 * i);
        press.setTimestamp(1000 + 40 * i);
        QCoreApplication::sendEvent(QGuiApplication::focusWindow(), &release);
        QCoreApplication::sendEvent(QGuiApplication::focusWindow(), &press);
    }
    EXPECT_EQ(m_manager->presets().size(), count + 1);
}

TEST_F(ListOfPresets, ControlDDuplicatesWhereverTheFocusIs)
{
    list().setFocus();
    press(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(m_manager->presets().size(), 4) << "nothing is selected";

    clickRow(u"Alpha"_s);
    auto *field = control<QLineEdit>("bitRate");
    enter(field);
    type(u"1234"_s);
    press(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(selectedName(), u"Alpha copy"_s);
    EXPECT_TRUE(waitFor([&] { return list().hasFocus(); }));
    EXPECT_EQ(onDisk("Alpha")->videoSettings().first()->bitRate(), 1234);
    EXPECT_EQ(onDisk("Alpha copy")->videoSettings().first()->bitRate(), 1234);

    press(Qt::Key_F2);
    ASSERT_TRUE(nameField());
    press(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(m_manager->presets().size(), 5) << "the key belongs to the name field";
    press(Qt::Key_Escape);

    m_controller->window()->hide();
    QTest::keyClick(field, Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(m_manager->presets().size(), 5) << "the list is not on screen";
}

TEST_F(ListOfPresets, TakesTheFocusOnceTheNotificationHasBeenDelivered)
{
    clickRow(u"Alpha"_s);
    control<QLineEdit>("bitRate")->setFocus();
    NotificationCenter::defaultCenter().post(u"somethingElse"_s);
    turn();
    EXPECT_FALSE(list().hasFocus());
    NotificationCenter::defaultCenter().post(kFocusPresetsListNotification);
    EXPECT_FALSE(list().hasFocus());
    EXPECT_TRUE(waitFor([&] { return list().hasFocus(); }));
}

TEST_F(ListOfPresets, RowsThatComeAndGoNeverSelect)
{
    QStringList selections;
    QObject::connect(m_manager.get(), &PresetsManager::selectedPresetChanged, &window(),
                     [&](const auto &preset) { selections.append(preset ? preset->name() : u"none"_s); });
    clickRow(u"Beta"_s);
    ASSERT_TRUE(elsewhere(u"rm Alpha.json; cp Delta.json Aaa.json; cp Delta.json Zzz.json"_s));
    EXPECT_EQ(highlightedName(), u"Beta"_s);
    ASSERT_TRUE(elsewhere(u"rm Beta.json"_s));
    EXPECT_EQ(highlightedName(), QString());
    EXPECT_EQ(selections, (QStringList{u"Beta"_s, u"none"_s}));
    EXPECT_FALSE(list().currentIndex().isValid());
}

TEST_F(ListOfPresets, LeavingAnEditedPresetSavesIt)
{
    clickRow(u"Alpha"_s);
    enter(control<QLineEdit>("bitRate"));
    type(u"4321"_s);
    clickRow(u"Delta"_s);
    EXPECT_EQ(onDisk("Alpha")->videoSettings().first()->bitRate(), 4321);
    // Without an edit there is nothing to save but what becomes selected.
    LiveStore::settle(*m_manager);
    const auto saves = m_store.logOf("Preset Saved: Delta"_L1).size();
    clickRow(u"Alpha"_s);
    LiveStore::settle(*m_manager);
    EXPECT_EQ(m_store.logOf("Preset Saved: Delta"_L1).size(), saves);
}

} // namespace
} // namespace vantle
