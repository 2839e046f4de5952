// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/VideoSettingsView.h"
#include "tests/editor/OpenEditor.h"

#include <QtGui/QTextDocument>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QToolButton>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using test::waitFor;

class VideoForm : public test::OpenEditor
{
protected:
    void openForm(StreamingType type)
    {
        m_preset = openWithNew(type);
        m_settings = m_preset->videoSettings().first();
    }

    static QStringList choices(const QComboBox *box)
    {
        QStringList texts;
        for (int i = 0; i < box->count(); ++i)
            texts.append(box->itemText(i));
        return texts;
    }

    /// Chooses with the keyboard, as a user does in a closed picker.
    void choose(QComboBox *box, const QString &text) const
    {
        box->setFocus();
        press(Qt::Key_Home);
        while (box->currentText() != text && box->currentIndex() + 1 < box->count())
            press(Qt::Key_Down);
        EXPECT_EQ(box->currentText(), text);
    }

    [[nodiscard]] bool shows(const QString &text) const
    {
        const auto labels = form()->findChildren<QLabel *>();
        return std::any_of(labels.begin(), labels.end(),
                           [&](const QLabel *label) { return label->isVisible() && label->text() == text; });
    }

    std::shared_ptr<VantlePreset> m_preset;
    std::shared_ptr<VideoSettings> m_settings;
};

TEST_F(VideoForm, OffersTheChoicesInTheirOrder)
{
    openForm(T::hls);
    EXPECT_EQ(choices(control<QComboBox>("codec")), (QStringList{u"H.264"_s, u"HEVC"_s}));
    EXPECT_EQ(choices(control<QComboBox>("resolution")), videoResolutions().texts());
    EXPECT_EQ(choices(control<QComboBox>("frameRate")),
              (QStringList{u"23.98 fps"_s, u"24.00 fps"_s, u"25.00 fps"_s, u"29.97 fps"_s, u"30.00 fps"_s,
                           u"50.00 fps"_s, u"59.94 fps"_s, u"60.00 fps"_s}));
    EXPECT_EQ(choices(control<QComboBox>("profile")),
              m_settings->profileLevels(VideoCodec::h264, m_settings->resolution(), 30));
    choose(control<QComboBox>("frameRate"), u"23.98 fps"_s);
    EXPECT_EQ(m_settings->frameRate(), 23.976);
}

TEST_F(VideoForm, TheCodecChangesProfilesAndMaximumButNotTheModelsProfile)
{
    openForm(T::hls);
    choose(control<QComboBox>("profile"), u"H264_High_4_1"_s);
    EXPECT_TRUE(shows(u"Maximum  50000"_s));
    choose(control<QComboBox>("codec"), u"HEVC"_s);
    const auto *profile = control<QComboBox>("profile");
    EXPECT_EQ(m_settings->profile(), u"H264_High_4_1"_s);
    EXPECT_EQ(profile->currentText(), u"H264_High_4_1"_s);
    EXPECT_TRUE(waitFor(
        [&] { return shows(u"HEVC has no profile of this name; the usual one is HEVC_Main_AutoLevel."_s); }));
    EXPECT_TRUE(shows(u"Maximum  0"_s));
    auto *bitRate = control<QLineEdit>("bitRate");
    enter(bitRate);
    type(u"6000"_s);
    press(Qt::Key_Tab);
    EXPECT_EQ(m_settings->bitRate(), 4500) << "not the 0 that is the maximum";
    EXPECT_EQ(bitRate->text(), u"4500"_s);
    EXPECT_TRUE(waitFor([&] { return shows(u"Stays at 4500 until the profile fits."_s); }));
    EXPECT_EQ(bitRate->accessibleDescription(), u"Stays at 4500 until the profile fits."_s);
    choose(control<QComboBox>("profile"), u"HEVC_Main 10_AutoLevel"_s);
    EXPECT_EQ(choices(profile), m_settings->hevcProfileLevels(m_settings->resolution(), 30));
    EXPECT_TRUE(shows(u"Maximum  240000"_s));
    EXPECT_TRUE(waitFor([&] { return profile->accessibleDescription().isEmpty(); }));
    EXPECT_TRUE(bitRate->accessibleDescription().isEmpty());
    enter(bitRate);
    type(u"250000"_s);
    EXPECT_TRUE(
        waitFor([&] { return shows(u"Limited to 240000, the most that HEVC_Main 10_AutoLevel allows."_s); }));
    EXPECT_TRUE(shows(u"Video Variant: HEVC 1920 x 1080 @ 30.0"_s));
}

TEST_F(VideoForm, NumbersAreTakenAsTheyAreTyped)
{
    openForm(T::srt);
    const struct
    {
        const char *field;
        QString typed;
        qint64 duringTheEdit;
        QString afterwards;
    } cases[] = {
        {"bitRate", u"8000"_s, 8000, u"8000"_s},
        {"bitRate", u"1,234"_s, 1234, u"1234"_s},
        {"bitRate", u"abc"_s, 4500, u"4500"_s},
        {"bitRate", u"12.5"_s, 4500, u"4500"_s},
        {"bitRate", u"1e3"_s, 4500, u"4500"_s},
        {"bitRate", u"12 34"_s, 4500, u"4500"_s},
        {"bitRate", u"1,23"_s, 4500, u"4500"_s},
        {"bitRate", u"-5"_s, 0, u"0"_s},
        {"bitRate", u"999999"_s, 240000, u"240000"_s},
        {"bitRate", u"9223372036854775807"_s, 240000, u"240000"_s},
        {"bitRate", u"9223372036854775808"_s, 4500, u"4500"_s},
        {"bitRate", u"999999999999999999999"_s, 4500, u"4500"_s},
        {"pid", u" 4097 "_s, 4097, u"4097"_s},
        {"pid", u"0x1F"_s, 4097, u"4097"_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.typed.toStdString());
        m_settings->setBitRate(4500);
        auto *field = control<QLineEdit>(c.field);
        enter(field);
        type(c.typed);
        EXPECT_EQ(field->text(), c.typed) << "nothing rewrites what is being typed";
        EXPECT_EQ(m_settings->property(c.field).toLongLong(), c.duringTheEdit);
        press(Qt::Key_Tab);
        EXPECT_EQ(field->text(), c.afterwards);
        EXPECT_EQ(m_settings->property(c.field).toLongLong(), c.duringTheEdit);
    }
}

TEST_F(VideoForm, CustomSizesHaveFieldsAndNeverStopTheProcess)
{
    openForm(T::hls);
    EXPECT_FALSE(control<QLineEdit>("customWidth"));
    choose(control<QComboBox>("resolution"), u"custom"_s);
    auto *width = control<QLineEdit>("customWidth");
    ASSERT_TRUE(width);
    enter(width);
    type(u"1000000"_s);
    EXPECT_EQ(m_settings->customWidth(), 16384);
    enter(control<QLineEdit>("customHeight"));
    type(u"16384"_s);
    EXPECT_EQ(m_settings->customHeight(), 16384);
    m_settings->setCustomWidth(std::numeric_limits<qint64>::max()); // as a file may say
    m_settings->setCustomHeight(std::numeric_limits<qint64>::max());
    m_settings->setFrameRate(1e308);
    EXPECT_EQ(choices(control<QComboBox>("profile")), QStringList{u"H264_Main_AutoLevel"_s});
    EXPECT_TRUE(waitFor([&] { return shows(u"No level of H.264 reaches such a frame size and rate."_s); }));
    choose(control<QComboBox>("resolution"), u"1280 x 720"_s);
    EXPECT_FALSE(control<QLineEdit>("customWidth"));
}

TEST_F(VideoForm, RemovesTheVeryRenditionAmongEqualOnes)
{
    openForm(T::hls);
    m_preset->newVideoSettings();
    m_preset->newVideoSettings();
    turn();
    const VideoSettingsList all = m_preset->videoSettings();
    click(control<QToolButton>("videoSettings", 1));
    EXPECT_EQ(m_preset->videoSettings(), (VideoSettingsList{all[0], all[2]}));
    click(control<QToolButton>("videoSettings", 0));
    click(control<QToolButton>("videoSettings", 0));
    EXPECT_TRUE(m_preset->videoSettings().isEmpty());
    EXPECT_FALSE(control<QComboBox>("codec", 1)) << "only the track's form is left";
}

TEST_F(VideoForm, AFormThatIsUsedAgainHasRoomForItsNewTexts)
{
    openForm(T::hls);
    m_settings->setProfile(u"none of these"_s);
    turn();
    EXPECT_TRUE(shows(u"Maximum  0"_s));
    click(control<QToolButton>("videoSettings"));
    click(control<QPushButton>("videoSettings"));
    const QList<QLabel *> labels = form()->findChildren<QLabel *>();
    const auto maximum = std::find_if(labels.begin(), labels.end(), [](const QLabel *label) {
        return label->isVisible() && label->text() == u"Maximum  240000"_s;
    });
    ASSERT_NE(maximum, labels.end());
    EXPECT_GE((*maximum)->width(), (*maximum)->sizeHint().width());
}

TEST_F(VideoForm, ToolTipsShowTextsAsTheyAre)
{
    openForm(T::hls);
    for (const QString &text : {u"A & B"_s, u"a < b"_s, u"<b>Finals</b>"_s, u"&lt;b&gt;"_s, u"a\nb"_s}) {
        m_settings->setProfile(text);
        m_preset->setName(text);
        const QModelIndex row = list().model()->index(0, 0);
        const std::pair<QString, QString> tips[] = {
            {control<QWidget>("profile")->toolTip(), text},
            {row.data(Qt::ToolTipRole).toString(), text + u"\nHLS"_s},
        };
        for (const auto &[tip, expected] : tips) {
            QTextDocument shown;
            Qt::mightBeRichText(tip) ? shown.setHtml(tip) : shown.setPlainText(tip);
            EXPECT_EQ(shown.toPlainText(), expected);
        }
    }
}

TEST_F(VideoForm, TheWheelScrollsTheFormAndChangesNoValue)
{
    openForm(T::hls);
    for (int i = 0; i < 20; ++i)
        m_preset->newVideoSettings();
    turn();
    auto *codec = control<QComboBox>("codec");
    codec->setFocus();
    const QPointF centre = codec->rect().center();
    QWheelEvent wheel(centre, codec->mapToGlobal(centre), {}, {0, -120}, Qt::NoButton, {}, Qt::NoScrollPhase,
                      false);
    QSpontaneKeyEvent::setSpontaneous(&wheel); // only events of the window system go on to the parent
    QCoreApplication::instance()->notify(codec, &wheel);
    EXPECT_GT(form()->verticalScrollBar()->value(), 0);
    EXPECT_EQ(m_settings->codec(), VideoCodec::h264);
}

TEST_F(VideoForm, ColumnsLineUpFromOneRenditionToTheNext)
{
    openForm(T::srt);
    m_preset->newVideoSettings();
    m_preset->videoSettings().last()->setCodec(VideoCodec::hevc);
    m_preset->videoSettings().last()->setFrameRate(23.976);
    m_settings->setResolution(VideoResolution::_custom);
    turn();
    for (const char *property : {"resolution", "frameRate", "profile", "bitRate", "pid"}) {
        const QWidget *first = control<QWidget>(property, 0);
        const QWidget *second = control<QWidget>(property, 1);
        EXPECT_EQ(first->mapTo(form(), QPoint()).x(), second->mapTo(form(), QPoint()).x()) << property;
        EXPECT_EQ(first->size(), second->size()) << property;
        EXPECT_EQ(first->height(), control<QWidget>("codec", 0)->height()) << property;
    }
}

} // namespace
} // namespace vantle
