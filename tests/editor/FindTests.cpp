// SPDX-License-Identifier: MIT
#include "tests/editor/OpenEditor.h"

#include <QtTest/QAbstractItemModelTester>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

class Find : public test::OpenEditor
{
protected:
    void SetUp() override
    {
        m_store.writePreset(u"Alpha"_s);
        m_store.writePreset(u"Beta"_s, T::srt);
        m_store.writePreset(u"Gamma"_s);
        m_store.writePreset(u"Srt Talk"_s, T::rtmp);
        open();
        m_tester = std::make_unique<QAbstractItemModelTester>(
            list().model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
        clickRow(u"Gamma"_s);
    }

    void find(const QString &text)
    {
        press(Qt::Key_F, Qt::ControlModifier);
        ASSERT_TRUE(field()->isVisible());
        type(text);
    }

    [[nodiscard]] QLineEdit *field() const { return window().findChild<QLineEdit *>(u"find"_s); }

    [[nodiscard]] QStringList shown() const
    {
        QStringList names;
        for (int i = 0; i < list().model()->rowCount(); ++i)
            names.append(list().model()->index(i, 0).data().toString());
        return names;
    }

    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

TEST_F(Find, FiltersByNameAndKindAndLeavesTheSelectionAlone)
{
    EXPECT_FALSE(field()->isVisible());
    const struct
    {
        QString text;
        QStringList shown;
    } cases[] = {
        {u"a"_s, {u"Alpha"_s, u"Beta"_s, u"Gamma"_s, u"Srt Talk"_s}},
        {u"sRt"_s, {u"Beta"_s, u"Srt Talk"_s}},
        {u"srt b"_s, {u"Beta"_s}},
        {u"hls"_s, {u"Alpha"_s, u"Gamma"_s}},
        {u"nothing"_s, {}},
    };
    for (const auto &c : cases) {
        find(c.text);
        EXPECT_EQ(shown(), c.shown) << c.text.toStdString();
        EXPECT_EQ(selectedName(), u"Gamma"_s);
        EXPECT_EQ(highlightedName(), c.shown.contains(u"Gamma"_s) ? u"Gamma"_s : QString());
    }
    press(Qt::Key_Escape);
    EXPECT_FALSE(field()->isVisible());
    EXPECT_EQ(shown().size(), 4);
    EXPECT_EQ(highlightedName(), u"Gamma"_s);
    EXPECT_TRUE(list().hasFocus());
}

TEST_F(Find, TheNeighbourOfADeletedPresetIsThatOfTheWholeList)
{
    find(u"srt"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(selectedName(), u"Beta"_s) << "the first that is shown, since the selected one is not";
    press(Qt::Key_Down);
    EXPECT_EQ(selectedName(), u"Srt Talk"_s);
    press(Qt::Key_F, Qt::ControlModifier);
    press(Qt::Key_Return);
    EXPECT_EQ(selectedName(), u"Srt Talk"_s);
    press(Qt::Key_Delete);
    clickInDialog(u"Delete"_s);
    EXPECT_EQ(selectedName(), u"Gamma"_s);
    EXPECT_EQ(shown(), QStringList{u"Beta"_s});
    EXPECT_EQ(highlightedName(), QString());
    press(Qt::Key_Down);
    press(Qt::Key_F2);
    ASSERT_TRUE(nameField());
    press(Qt::Key_Escape);
    EXPECT_EQ(shown(), QStringList{u"Beta"_s}) << "ends the name's edit first";
    press(Qt::Key_Escape);
    EXPECT_EQ(shown().size(), 3) << "from the list, too";
}

TEST_F(Find, AddingDuplicatingAndRenamingEndIt)
{
    find(u"srt"_s);
    // Others' files are judged when they come.
    ASSERT_TRUE(elsewhere(u"cp Alpha.json Another.json; cp Beta.json 'Srt New.json'"_s));
    EXPECT_EQ(shown(), (QStringList{u"Beta"_s, u"Srt New"_s, u"Srt Talk"_s}));
    press(Qt::Key_Down);
    press(Qt::Key_F2);
    ASSERT_TRUE(nameField());
    type(u"Zulu"_s);
    EXPECT_EQ(shown().size(), 3) << "typing hides no row";
    press(Qt::Key_Return);
    EXPECT_EQ(shown().size(), 6);
    EXPECT_EQ(highlightedName(), u"Zulu"_s);
    EXPECT_FALSE(field()->isVisible());

    find(u"alpha"_s);
    press(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(shown().size(), 7);
    EXPECT_EQ(highlightedName(), u"Zulu copy"_s);
}

} // namespace
} // namespace vantle
