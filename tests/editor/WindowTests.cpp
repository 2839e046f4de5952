// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/NotificationCenter.h"
#include "tests/editor/OpenEditor.h"

#include <QtCore/QSettings>
#include <QtGui/QScreen>
#include <QtWidgets/QMenu>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QToolButton>

#include <thread>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using test::waitFor;

class Window : public test::OpenEditor
{
protected:
    void SetUp() override { QSettings().clear(); }

    [[nodiscard]] QToolButton *button(const QString &name) const
    {
        return window().findChild<QToolButton *>(name);
    }
    [[nodiscard]] QWidget *sidebar() const { return list().parentWidget(); }
};

TEST_F(Window, IsCalmWithoutASelection)
{
    open();
    EXPECT_EQ(window().windowTitle(), u"Vantle"_s);
    EXPECT_FALSE(form());
    const auto labels = window().findChildren<QLabel *>();
    EXPECT_TRUE(std::any_of(labels.begin(), labels.end(), [](const QLabel *label) {
        return label->isVisible() && label->text() == u"Please Select a Preset"_s;
    }));
    window().resize(100, 100);
    turn();
    EXPECT_EQ(window().size(), QSize(1080, 700));
    EXPECT_GE(sidebar()->width(), 220);
    auto *columns = window().findChild<QSplitter *>();
    columns->setSizes({1000, 100});
    EXPECT_GE(columns->widget(1)->width(), 820);
    window().resize(1600, 900);
    turn();
    columns->setSizes({1000, 100});
    EXPECT_EQ(sidebar()->width(), 320);
}

TEST_F(Window, TheTitleIsTheSelectedPresetsName)
{
    const auto preset = openWithNew(T::hls);
    EXPECT_EQ(window().windowTitle(), u"HLS Preset"_s);
    preset->setName(u"100 [*] percent"_s);
    EXPECT_EQ(window().windowTitle(), u"100 [*][*] percent"_s) << "Qt's escape for the mark of changes";
    m_manager->setSelectedPreset(nullptr);
    turn();
    EXPECT_EQ(window().windowTitle(), u"Vantle"_s);
}

TEST_F(Window, TheMenuAddsEveryKindInOrderAndAsksForTheFocus)
{
    open();
    QStringList notifications;
    QObject::connect(&NotificationCenter::defaultCenter(), &NotificationCenter::posted, &window(),
                     [&](const QString &name) { notifications.append(name); });
    const QStringList labels = streamingTypes().texts();
    for (qsizetype i = 0; i < labels.size(); ++i) {
        click(button(u"addPreset"_s));
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        ASSERT_TRUE(menu);
        ASSERT_EQ(menu->actions().size(), 6);
        EXPECT_EQ(menu->actions()[i]->text(), labels[i]);
        EXPECT_FALSE(menu->actions()[i]->icon().isNull());
        click(menu, menu->actionGeometry(menu->actions()[i]).center());
        EXPECT_EQ(selectedName(), labels[i] + " Preset"_L1);
        EXPECT_TRUE(form());
        EXPECT_EQ(notifications, QStringList(i + 1, u"focusPresetsList"_s));
        EXPECT_TRUE(waitFor([&] { return list().hasFocus(); }));
    }
}

TEST_F(Window, TheSidebarGoesAndComesForAFocusedWidgetOfTheActiveWindow)
{
    openWithNew(T::hls);
    control<QLineEdit>("bitRate")->setFocus();
    click(button(u"toggleSidebar"_s));
    EXPECT_FALSE(sidebar()->isVisible());
    click(button(u"toggleSidebar"_s));
    EXPECT_TRUE(sidebar()->isVisible());

    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    click(button(u"toggleSidebar"_s));
    EXPECT_TRUE(sidebar()->isVisible()) << "another window is the key one";
}

TEST_F(Window, ClosingAnyWindowSavesTheSelectedPresetOnce)
{
    const auto preset = openWithNew(T::hls);
    const auto saves = [&] {
        test::LiveStore::settle(*m_manager);
        return m_store.logOf("Preset Saved"_L1).size();
    };
    preset->videoSettings().first()->setBitRate(1111);
    const auto before = saves();
    QWidget other;
    other.show();
    other.close();
    EXPECT_EQ(saves(), before + 1);
    EXPECT_EQ(onDisk("HLS Preset")->videoSettings().first()->bitRate(), 1111);
    window().close();
    EXPECT_EQ(saves(), before + 2);
    m_manager->setSelectedPreset(nullptr);
    window().show();
    window().close();
    EXPECT_EQ(saves(), before + 2) << "nothing is selected";

    m_manager->setSelectedPreset(preset);
    preset->videoSettings().first()->setBitRate(2222);
    ASSERT_TRUE(QMetaObject::invokeMethod(qApp, "aboutToQuit", Qt::DirectConnection));
    // No waiting here: the process could end now.
    EXPECT_EQ(m_store.onDisk("HLS Preset")->videoSettings().first()->bitRate(), 2222);
}

TEST_F(Window, RemembersItsFrameAsFarAsTheScreensShowIt)
{
    open();
    window().setGeometry(20, 30, 1100, 720);
    const auto stored = [] { return QSettings().value(u"VantleWindowFrame"_s).toRect(); };
    EXPECT_TRUE(waitFor([&] { return stored() == QRect(20, 30, 1100, 720); }));
    window().resize(1111, 722);
    turn();
    m_controller.reset();
    EXPECT_EQ(stored(), QRect(20, 30, 1111, 722)) << "also when the window goes before a drag has settled";
    const auto reopened = [&](const QRect &frame) {
        m_controller.reset();
        QSettings().setValue(u"VantleWindowFrame"_s, frame);
        m_controller =
            PresetsWindowControllerObjCBridge::makePresetsWindowControllerWithPresetsManager(m_manager);
        return window().geometry();
    };
    EXPECT_EQ(reopened({20, 30, 1100, 720}), QRect(20, 30, 1100, 720));
    EXPECT_EQ(reopened({5, 5, 10, 10}).size(), QSize(1080, 700));
    ASSERT_EQ(QGuiApplication::primaryScreen()->availableSize(), QSize(1920, 1200));
    EXPECT_EQ(reopened({9000, 9000, 1100, 720}), QRect(1920 - 1100, 1200 - 720, 1100, 720));
    EXPECT_EQ(reopened({0, 0, 9000, 9000}), QRect(0, 0, 1920, 1200));
    EXPECT_EQ(reopened({-5000, -5000, 1100, 720}).topLeft(), QPoint(0, 0));
}

TEST_F(Window, TheHostSelectsAndTheFirstOpeningShowsIt)
{
    m_store.writePreset(u"Chosen"_s, T::srt);
    m_manager = m_store.makeManager();
    m_manager->setSelectedPreset(m_manager->presetWithName(u"Chosen"_s));
    ASSERT_EQ(selectedName(), u"Chosen"_s);
    openWindow();
    ASSERT_EQ(selectedName(), u"Chosen"_s);
    EXPECT_EQ(highlightedName(), u"Chosen"_s);
    EXPECT_TRUE(form());
    m_controller.reset();
    m_manager->addNewPreset(T::hls); // the store lives on without its window
    EXPECT_EQ(m_manager->presets().size(), 2);
}

using WindowDeathTest = Window;

TEST_F(WindowDeathTest, EntriesOffTheMainThreadStopTheProcess)
{
    open();
    const auto elsewhere = [](const auto &call) { std::thread(call).join(); };
    using Bridge = PresetsWindowControllerObjCBridge;
    EXPECT_DEATH(elsewhere([&] {
                     static_cast<void>(Bridge::makePresetsWindowControllerWithPresetsManager(m_manager));
                 }),
                 "VantlePresets/VantleView");
    EXPECT_DEATH(elsewhere([] { NotificationCenter::defaultCenter().post(QString()); }), "main thread");
    EXPECT_DEATH(elsewhere([&] { m_controller->showWindow(); }), "main thread");
}

TEST_F(Window, ComesBackMaximizedOrNot)
{
    open();
    for (const bool isMaximized : {true, false}) {
        window().setWindowState(isMaximized ? Qt::WindowMaximized : Qt::WindowNoState);
        turn();
        m_controller.reset();
        m_controller =
            PresetsWindowControllerObjCBridge::makePresetsWindowControllerWithPresetsManager(m_manager);
        EXPECT_EQ(window().isMaximized(), isMaximized);
        window().show();
        turn();
    }
}

} // namespace
} // namespace vantle
