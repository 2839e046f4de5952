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
