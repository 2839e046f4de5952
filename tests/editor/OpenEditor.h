// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/PresetFormView.h"
#include "VantlePresets/editor/PresetsListModel.h"
#include "VantlePresets/editor/PresetsListView.h"
#include "VantlePresets/editor/PresetsWindowControllerObjCBridge.h"
#include "VantlePresets/editor/VantleView.h"
#include "tests/support/LiveStore.h"
#include "tests/support/QtPrinters.h"

#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollBar>

#include <gtest/gtest.h>

#include <algorithm>

namespace vantle::test {

/// The real window on a real store on a folder of the test's own, worked with keys and mouse.
class OpenEditor : public testing::Test
{
protected:
    using T = StreamingType;

    void TearDown() override
    {
        m_controller.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    /// Opens the window on what was written into the folder.
    void open()
    {
        m_manager = m_store.makeManager();
        ASSERT_TRUE(m_manager);
        openWindow();
    }

    void openWindow()
    {
        m_controller =
            PresetsWindowControllerObjCBridge::makePresetsWindowControllerWithPresetsManager(m_manager);
        m_controller->window()->resize(1080, 700);
        m_controller->showWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    }

    /// Opens the window with a new preset selected.
    std::shared_ptr<VantlePreset> openWithNew(StreamingType type)
    {
        open();
        const auto preset = m_manager->addNewPreset(type);
        turn();
        return preset;
    }

    void turn() const
    {
        QCoreApplication::processEvents();
        // A window manager gives the focus back when a dialog has closed; here there is none.
        if (!QGuiApplication::focusWindow() && window().isVisible()) {
            window().activateWindow();
            EXPECT_TRUE(QTest::qWaitForWindowActive(&window()));
        }
    }

    [[nodiscard]] QMainWindow &window() const { return *m_controller->window(); }
    [[nodiscard]] PresetsListView &list() const { return *window().findChild<PresetsListView *>(); }

    /// The form that is shown, or null.
    [[nodiscard]] PresetFormView *form() const
    {
        for (PresetFormView *form : window().findChildren<PresetFormView *>()) {
            if (form->isVisible())
                return form;
        }
        return nullptr;
    }

    /// The controls of the form that edit the property, from top to bottom and left to right.
    template <class Control>
    [[nodiscard]] QList<Control *> controls(const char *property) const
    {
        QList<Control *> found = form()->findChildren<Control *>(QString::fromLatin1(property));
        found.removeIf([](const QWidget *w) { return !w->isVisible(); });
        const auto place = [this](const QWidget *w) { return w->mapTo(form(), QPoint()); };
        std::stable_sort(found.begin(), found.end(), [&](const QWidget *a, const QWidget *b) {
            return std::pair(place(a).y(), place(a).x()) < std::pair(place(b).y(), place(b).x());
        });
        return found;
    }

    template <class Control>
    [[nodiscard]] Control *control(const char *property, qsizetype number = 0) const
    {
        return controls<Control>(property).value(number);
    }

    /// A key press on its way from the window system to whatever has the focus.
    void press(int key, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::keyClick(QGuiApplication::focusWindow(), static_cast<Qt::Key>(key), modifiers);
        turn();
    }

    void type(const QString &text) const
    {
        for (const QChar c : text)
            QTest::keyClick(QGuiApplication::focusWindow(), c.toLatin1());
        turn();
    }

    void click(QWidget *widget, const QPoint &position = {}) const
    {
        ASSERT_TRUE(widget);
        QTest::mouseClick(widget, Qt::LeftButton, {}, position);
        turn();
    }

    /// Puts the cursor into a field and selects its text.
    void enter(QLineEdit *field) const
    {
        click(field);
        field->selectAll();
    }

    [[nodiscard]] QRect rowRect(const QString &name) const
    {
        return list().visualRect(list().model()->index(m_manager->rowOf(m_manager->presetWithName(name)), 0));
    }

    void clickRow(const QString &name) const { click(list().viewport(), rowRect(name).center()); }

    [[nodiscard]] QString selectedName() const
    {
        const auto &preset = m_manager->selectedPreset();
        return preset ? preset->name() : QString();
    }

    /// What the list highlights.
    [[nodiscard]] QString highlightedName() const
    {
        return list().selectionModel()->selectedIndexes().value(0).data().toString();
    }

    /// The open name field, or null.
    [[nodiscard]] QLineEdit *nameField() const
    {
        auto *field = qobject_cast<QLineEdit *>(QApplication::focusWidget());
        return field && list().isAncestorOf(field) ? field : nullptr;
    }

    [[nodiscard]] static QMessageBox *dialog()
    {
        return qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    }

    void clickInDialog(const QString &button) const
    {
        ASSERT_TRUE(dialog());
        for (QAbstractButton *candidate : dialog()->buttons()) {
            if (candidate->text() == button)
                return click(candidate);
        }
        FAIL() << "no button " << button.toStdString();
    }

    /// Another process runs a shell script in the folder, and the store has heard of it.
    [[nodiscard]] bool elsewhere(const QString &script)
    {
        m_manager->waitForFileTasks();
        const bool isDone = m_store.runElsewhere(script) && LiveStore::settle(*m_manager);
        turn();
        return isDone;
    }

    [[nodiscard]] std::shared_ptr<VantlePreset> onDisk(const std::string &name)
    {
        m_manager->waitForFileTasks();
        return m_store.onDisk(name);
    }

    LiveStore m_store;
    std::shared_ptr<PresetsManager> m_manager;
    std::unique_ptr<PresetsWindowController> m_controller;
};

} // namespace vantle::test
