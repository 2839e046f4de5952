// SPDX-License-Identifier: MIT
#include "VantlePresets/model/SRTVantlePreset.h"
#include "tests/editor/OpenEditor.h"

#include <QtWidgets/QComboBox>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using test::namesOf;
using test::waitFor;

class Keyboard : public test::OpenEditor
{
protected:
    /// Presses Tab, or Shift and Tab, until the focus is on the control of the name.
    bool go(Qt::Key key, const QString &name) const
    {
        constexpr int kMostControls = 300;
        for (int i = 0; i < kMostControls; ++i) {
            press(key, key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
            const QWidget *focus = QApplication::focusWidget();
            if (focus && focus->accessibleName() == name)
                return true;
        }
        ADD_FAILURE() << "no way to " << name.toStdString();
        return false;
    }
    bool forwardTo(const QString &name) const { return go(Qt::Key_Tab, name); }
    bool backTo(const QString &name) const { return go(Qt::Key_Backtab, name); }
};

TEST_F(Keyboard, IsAllThatAnOperatorNeeds)
{
    open();
    list().setFocus();

    ASSERT_TRUE(forwardTo(u"Add Preset"_s));
    press(Qt::Key_Space);
    ASSERT_TRUE(QApplication::activePopupWidget());
    press(Qt::Key_Up); // from nowhere to the last kind
    press(Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return list().hasFocus(); }));
    EXPECT_EQ(selectedName(), u"SRT Preset"_s);

    press(Qt::Key_F2);
    type(u"Night Relay"_s);
    press(Qt::Key_Return);

    ASSERT_TRUE(forwardTo(u"Add Video"_s));
    press(Qt::Key_Space);
    ASSERT_TRUE(backTo(u"Codec"_s));
    press(Qt::Key_Down);
    ASSERT_TRUE(forwardTo(u"Profile"_s));
    press(Qt::Key_Home);
    press(Qt::Key_Down);
    ASSERT_TRUE(forwardTo(u"Bitrate (kb/s)"_s));
    type(u"999999"_s);
    const auto *bitRate = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    EXPECT_EQ(bitRate->text(), u"999999"_s);
    press(Qt::Key_Tab);
    EXPECT_EQ(bitRate->text(), u"240000"_s);

    ASSERT_TRUE(forwardTo(u"Add Audio"_s));
    press(Qt::Key_Space);
    ASSERT_TRUE(backTo(u"Clear"_s));
    press(Qt::Key_Space);
    for (const QString &channel : {u"3"_s, u"1"_s}) {
        ASSERT_TRUE(backTo(channel));
        press(Qt::Key_Space);
    }
    ASSERT_TRUE(forwardTo(u"2"_s));
    press(Qt::Key_Space);

    press(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(selectedName(), u"Night Relay copy"_s);
    ASSERT_TRUE(waitFor([&] { return list().hasFocus(); }));
    press(Qt::Key_Delete);
    ASSERT_TRUE(dialog());
    while (qobject_cast<QPushButton *>(QApplication::focusWidget())->text() != u"Delete"_s)
        press(Qt::Key_Tab);
    press(Qt::Key_Space);
    EXPECT_EQ(namesOf(*m_manager), QStringList{u"Night Relay"_s});
    EXPECT_EQ(selectedName(), u"Night Relay"_s);
    window().close();

    m_manager->waitForFileTasks();
    EXPECT_EQ(m_store.fileNames(), QStringList{u"Night Relay.json"_s});
    const auto saved = std::dynamic_pointer_cast<SRTVantlePreset>(onDisk("Night Relay"));
    ASSERT_TRUE(saved);
    ASSERT_EQ(saved->videoSettings().size(), 2);
    EXPECT_TRUE(*saved->videoSettings()[0] == *VideoSettings::create());
    EXPECT_EQ(saved->videoSettings()[0]->bitRate(), 4500);
    EXPECT_EQ(saved->videoSettings()[1]->codec(), VideoCodec::hevc);
    EXPECT_EQ(saved->videoSettings()[1]->profile(), u"HEVC_Main 10_AutoLevel"_s);
    EXPECT_EQ(saved->videoSettings()[1]->bitRate(), 240000);
    ASSERT_EQ(saved->audioSettings().size(), 2);
    EXPECT_EQ(saved->audioSettings()[0]->inputChannels(), (QList<qint64>{0, 1}));
    EXPECT_TRUE(saved->audioSettings()[0]->isDefault());
    EXPECT_EQ(saved->audioSettings()[1]->inputChannels(), (QList<qint64>{2, 0, 1}));
    EXPECT_FALSE(saved->audioSettings()[1]->isDefault());
}

} // namespace
} // namespace vantle
