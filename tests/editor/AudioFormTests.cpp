// SPDX-License-Identifier: MIT
#include "tests/editor/OpenEditor.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QToolButton>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

class AudioForm : public test::OpenEditor
{
protected:
    void openForm(StreamingType type)
    {
        m_preset = openWithNew(type);
        m_track = m_preset->audioSettings().first();
    }

    [[nodiscard]] QList<int> checkedChannels() const
    {
        QList<int> checked;
        for (const QCheckBox *toggle : controls<QCheckBox>("inputChannels")) {
            if (toggle->isChecked())
                checked.append(toggle->text().toInt());
        }
        return checked;
    }

    void toggle(int channel)
    {
        auto *box = controls<QCheckBox>("inputChannels").at(channel - 1);
        EXPECT_EQ(box->text().toInt(), channel);
        click(box, QPoint(8, box->height() / 2));
    }

    std::shared_ptr<VantlePreset> m_preset;
    std::shared_ptr<AudioSettings> m_track;
};

TEST_F(AudioForm, ChannelsKeepTheOrderInWhichTheyWereTurnedOn)
{
    openForm(T::rtmp);
    EXPECT_EQ(controls<QCheckBox>("inputChannels").size(), 32);
    EXPECT_EQ(checkedChannels(), (QList<int>{1, 2}));
    click(control<QPushButton>("inputChannels"));
    EXPECT_EQ(m_track->inputChannels(), QList<qint64>());
    EXPECT_EQ(checkedChannels(), QList<int>());
    for (const int channel : {3, 1, 2})
        toggle(channel);
    EXPECT_EQ(m_track->inputChannels(), (QList<qint64>{2, 0, 1}));
    toggle(1);
    EXPECT_EQ(m_track->inputChannels(), (QList<qint64>{2, 1}));

    m_track->setInputChannels({7, 40, 7, 5, -1}); // as a file may say: twice, and without a toggle
    EXPECT_EQ(checkedChannels(), (QList<int>{6, 8}));
    toggle(8);
    toggle(32);
    EXPECT_EQ(m_track->inputChannels(), (QList<qint64>{40, 5, -1, 31}));
}

TEST_F(AudioForm, TheTogglesStandInRowsOfEqualLengthAtEveryWidth)
{
    openForm(T::rtmp);
    for (const int width : {1080, 1300, 1600}) {
        window().resize(width, 700);
        turn();
        QHash<int, int> perLine;
        QRect before;
        for (const QCheckBox *toggle : controls<QCheckBox>("inputChannels")) {
            const QRect rect(toggle->mapTo(form(), QPoint()), toggle->size());
            EXPECT_TRUE(form()->viewport()->rect().contains(rect));
            EXPECT_FALSE(rect.intersects(before));
            EXPECT_GE(toggle->width(), toggle->sizeHint().width());
            before = rect;
            ++perLine[rect.top()];
        }
        for (const int count : std::as_const(perLine))
            EXPECT_EQ(count * perLine.size(), 32);
    }
}

TEST_F(AudioForm, TypingATrackNameShowsInTheHeading)
{
    openForm(T::hls);
    enter(control<QLineEdit>("trackName"));
    for (const QString &typed : {u"Deutsch"_s, QString()}) {
        control<QLineEdit>("trackName")->selectAll();
        press(Qt::Key_Delete);
        type(typed);
        const auto labels = form()->findChildren<QLabel *>();
        EXPECT_TRUE(std::any_of(labels.begin(), labels.end(), [&](const QLabel *label) {
            return label->text() == u"Audio Track "_s + typed;
        }));
        EXPECT_EQ(m_track->trackName(), typed);
    }
}

TEST_F(AudioForm, AValueOfAFileStaysUntilAnotherIsChosen)
{
    openForm(T::hls);
    m_track->setSampleRate(22050);
    m_track->setBitsPerSample(20);
    m_track->setBitRate(100);
    auto *rate = control<QComboBox>("sampleRate");
    EXPECT_EQ(rate->currentText(), u"22050Hz"_s);
    EXPECT_EQ(control<QComboBox>("bitsPerSample")->currentText(), u"20"_s);
    EXPECT_EQ(control<QComboBox>("bitRate", 0)->currentText(), u"100"_s);
    EXPECT_EQ(m_track->sampleRate(), 22050);
    rate->setFocus();
    press(Qt::Key_Home);
    EXPECT_EQ(m_track->sampleRate(), 32000);
    EXPECT_EQ(rate->count(), 5);
}

TEST_F(AudioForm, OneTrackIsTheDefaultOneAlsoWhenTheTracksCameFromAFile)
{
    const auto preset = makePreset(T::srt, u"Three"_s);
    preset->newAudioSettings();
    preset->newAudioSettings();
    preset->writeToFileAtPath(QString::fromStdString(m_store.file("Three.json").string()));
    open();
    clickRow(u"Three"_s);
    const auto tracks = m_manager->selectedPreset()->audioSettings();
    ASSERT_FALSE(tracks[2]->delegate());
    for (const qsizetype chosen : {2, 1}) {
        QWidget *toggle = control<QAbstractButton>("isDefault", chosen);
        toggle->setFocus();
        press(Qt::Key_Space);
        for (qsizetype i = 0; i < tracks.size(); ++i)
            EXPECT_EQ(tracks[i]->isDefault(), i == chosen);
        EXPECT_EQ(m_manager->selectedPreset()->defaultAudioSettings(), tracks[chosen]);
    }
    window().close();
    EXPECT_TRUE(onDisk("Three")->audioSettings()[1]->isDefault());
    EXPECT_FALSE(onDisk("Three")->audioSettings()[0]->isDefault());
}

} // namespace
} // namespace vantle
