// SPDX-License-Identifier: MIT
#include "tests/editor/OpenEditor.h"

#include <QtGui/QAccessible>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

class Accessibility : public test::OpenEditor
{
protected:
    static bool isControl(const QAccessibleInterface &item)
    {
        switch (item.role()) {
        case QAccessible::Button:
        case QAccessible::ButtonMenu:
        case QAccessible::CheckBox:
        case QAccessible::ComboBox:
        case QAccessible::EditableText:
        case QAccessible::List:
        case QAccessible::ListItem:
            return true;
        default:
            return item.state().focusable;
        }
    }

    /// Counts the controls below and complains of each that has no name.
    static int walk(QAccessibleInterface *item)
    {
        if (!item || item->state().invisible)
            return 0;
        int controls = 0;
        if (isControl(*item)) {
            ++controls;
            EXPECT_FALSE(item->text(QAccessible::Name).isEmpty())
                << "role " << item->role() << " "
                << (item->object() ? item->object()->objectName().toStdString() : "?");
        }
        // What a picker is made of is told through the picker.
        if (item->role() == QAccessible::ComboBox)
            return controls;
        for (int i = 0; i < item->childCount(); ++i)
            controls += walk(item->child(i));
        return controls;
    }
};

TEST_F(Accessibility, EveryControlOfEveryFormHasAName)
{
    open();
    for (const StreamingType type : streamingTypes().values()) {
        m_manager->addNewPreset(type);
        turn();
        if (auto *authenticate = control<QAbstractButton>("authenticate"))
            click(authenticate, QPoint(10, 10));
        EXPECT_GT(walk(QAccessible::queryAccessibleInterface(&window())), 40);
    }
    clickRow(u"SRT Preset"_s);
    press(Qt::Key_F2);
    ASSERT_TRUE(nameField());
    EXPECT_FALSE(nameField()->accessibleName().isEmpty());
}

TEST_F(Accessibility, WhatAnAssistiveProgramSetsIsAnEdit)
{
    const auto preset = openWithNew(T::srt);
    const auto track = preset->audioSettings().first();
    track->setIsDefault(false);
    const auto toggle = [&](QWidget *widget) {
        auto *item = QAccessible::queryAccessibleInterface(widget);
        item->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    };
    const auto set = [&](QWidget *widget, const QString &text) {
        QAccessible::queryAccessibleInterface(widget)->setText(QAccessible::Value, text);
    };
    toggle(control<QAbstractButton>("isDefault"));
    EXPECT_TRUE(track->isDefault());
    toggle(controls<QAbstractButton>("inputChannels").at(4));
    EXPECT_EQ(track->inputChannels(), (QList<qint64>{0, 1, 4}));
    auto *bitRate = control<QLineEdit>("bitRate");
    const struct
    {
        QString text;
        qint64 value;
    } cases[] = {{u"6000"_s, 6000}, {u"6e3"_s, 6000}, {u"999999"_s, 240000}};
    for (const auto &c : cases) {
        set(bitRate, c.text);
        EXPECT_EQ(preset->videoSettings().first()->bitRate(), c.value);
        EXPECT_EQ(bitRate->text(), QString::number(c.value)) << "an edit that has ended";
    }
    set(control<QLineEdit>("language"), u"de"_s);
    EXPECT_EQ(track->language(), u"de"_s);

    const auto youTube = m_manager->addNewPreset(T::youTube);
    turn();
    toggle(control<QAbstractButton>("authenticate"));
    EXPECT_TRUE(youTube->property("authenticate").toBool());
}

TEST_F(Accessibility, GroupsAreNamedAfterTheirHeaders)
{
    openWithNew(T::hls);
    m_manager->selectedPreset()->videoSettings().first()->setResolution(VideoResolution::_640_360);
    QStringList groups;
    for (QWidget *widget : form()->findChildren<QWidget *>()) {
        const auto *item = QAccessible::queryAccessibleInterface(widget);
        if (widget->isVisible() && item->role() == QAccessible::Grouping)
            groups.append(item->text(QAccessible::Name));
    }
    EXPECT_EQ(groups, (QStringList{u"Video Variant: H.264 640 x 360 @ 30.0"_s, u"Audio Track English"_s,
                                   u"Source Channels"_s}));
}

TEST_F(Accessibility, ACaptionIsItsControlsNameAndBuddy)
{
    openWithNew(T::srt);
    int captions = 0;
    for (const QLabel *label : form()->findChildren<QLabel *>()) {
        const QWidget *control = label->buddy();
        if (!control || control->objectName() == u"inputChannels"_s)
            continue;
        ++captions;
        EXPECT_EQ(control->accessibleName(), label->text());
        EXPECT_FALSE(control->objectName().isEmpty());
        const VantlePreset &preset = *m_manager->selectedPreset();
        const std::string property = control->objectName().toStdString();
        EXPECT_TRUE(preset.videoSettings().first()->metaObject()->indexOfProperty(property.c_str()) >= 0 ||
                    preset.audioSettings().first()->metaObject()->indexOfProperty(property.c_str()) >= 0)
            << property;
    }
    EXPECT_EQ(captions, 8 + 8);
}

} // namespace
} // namespace vantle
