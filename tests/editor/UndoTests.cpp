// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/EditHistory.h"
#include "tests/editor/OpenEditor.h"

#include <QtWidgets/QComboBox>
#include <QtWidgets/QToolButton>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

class Undo : public test::OpenEditor
{
protected:
    void openForm(StreamingType type)
    {
        m_preset = openWithNew(type);
        m_first = document();
    }

    [[nodiscard]] QByteArray document() const { return m_preset->encoded(document::Format::compact); }
    void undo() const { press(Qt::Key_Z, Qt::ControlModifier); }
    void redo() const { press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier); }

    std::shared_ptr<VantlePreset> m_preset;
    QByteArray m_first;
};

TEST_F(Undo, TenRoundsOfEditsRemovalsAndAdditionsLeadBackToTheFirstFile)
{
    openForm(T::srt);
    m_manager->waitForFileTasks();
    const auto bytes = [this] {
        QFile file(QString::fromStdString(m_store.file("SRT Preset.json").string()));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    const QByteArray firstFile = bytes();
    QList<QByteArray> states{document()};
    const auto note = [&] { states.append(document()); };
    for (int i = 0; i < 10; ++i) {
        enter(control<QLineEdit>("bitRate"));
        type(QString::number(1000 + i));
        note();
        click(control<QPushButton>("videoSettings"));
        note();
        click(control<QAbstractButton>("isDefault"), QPoint(10, 10));
        note();
        click(control<QToolButton>("videoSettings"));
        note();
        click(control<QPushButton>("audioSettings"));
        note();
        click(control<QToolButton>("audioSettings"));
        note();
    }
    for (qsizetype i = states.size() - 2; i >= 0; --i) {
        undo();
        ASSERT_EQ(document(), states[i]) << i;
    }
    undo();
    EXPECT_EQ(document(), m_first) << "there is nothing before it";
    m_manager->saveSelectedPreset();
    m_manager->waitForFileTasks();
    EXPECT_EQ(bytes(), firstFile);
    for (qsizetype i = 1; i < states.size(); ++i) {
        redo();
        ASSERT_EQ(document(), states[i]) << i;
    }
}

TEST_F(Undo, WhatIsTypedIntoOneFieldIsOneStepAndAnEditEndsWhatCouldBeRedone)
{
    openForm(T::hls);
    const auto typeInto = [&](const char *field, const QString &text) {
        enter(control<QLineEdit>(field));
        type(text);
    };
    typeInto("trackName", u"German"_s);
    typeInto("language", u"de"_s);
    undo();
    EXPECT_EQ(m_preset->audioSettings().first()->trackName(), u"German"_s);
    EXPECT_EQ(control<QLineEdit>("language")->text(), u"en"_s)
        << "shown in the field that has the focus, too";
    undo();
    EXPECT_EQ(document(), m_first);
    redo();
    EXPECT_EQ(control<QLineEdit>("trackName")->text(), u"German"_s);
    typeInto("language", u"fr"_s);
    redo();
    EXPECT_EQ(m_preset->audioSettings().first()->language(), u"fr"_s);

    m_preset->videoSettings().first()->setFrameRate(qQNaN()); // a host's doing; it can't be written
    turn();
    undo();
    m_preset->videoSettings().first()->setFrameRate(30);
    turn();
    undo();
    undo();
    EXPECT_EQ(document(), m_first);
}

TEST_F(Undo, AForeignChangeIsAStep)
{
    openForm(T::hls);
    enter(control<QLineEdit>("bitRate"));
    type(u"3000"_s);
    const QByteArray mine = document();
    ASSERT_TRUE(elsewhere(u"sed 's/\"English\"/\"Elsewhere\"/; s/4500/2000/' 'HLS Preset.json' > .t;"
                          "mv .t 'HLS Preset.json'"_s));
    press(Qt::Key_Tab);
    EXPECT_EQ(m_preset->audioSettings().first()->trackName(), u"Elsewhere"_s);
    undo();
    undo();
    EXPECT_EQ(document(), mine) << "what the change took away is back";
    undo();
    EXPECT_EQ(document(), m_first);
}

TEST_F(Undo, NeverTouchesNamesAndBeginsAnewWithEachSelection)
{
    openForm(T::hls);
    enter(control<QLineEdit>("trackName"));
    type(u"German"_s);
    list().setFocus();
    press(Qt::Key_F2);
    type(u"Show"_s);
    press(Qt::Key_Return);
    undo();
    EXPECT_EQ(document(), m_first) << "a rename is no other selection";
    EXPECT_EQ(m_preset->name(), u"Show"_s);
    redo();
    const auto other = m_manager->addNewPreset(T::hls);
    turn();
    clickRow(u"Show"_s);
    undo();
    EXPECT_EQ(m_preset->audioSettings().first()->trackName(), u"German"_s);
}

} // namespace
} // namespace vantle
