// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/HintLabel.h"
#include "VantlePresets/model/Assignment.h"
#include "tests/editor/OpenEditor.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtWidgets/QComboBox>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using test::waitFor;

/// Advice on the preset as the form shows it.
class Hints : public test::OpenEditor
{
protected:
    /// What the form says, from top to bottom.
    [[nodiscard]] QStringList shown() const
    {
        QStringList texts;
        for (const HintLabel *hint : controls<HintLabel>("hint"))
            texts.append(hint->text());
        return texts;
    }

    /// Until timers that were due before have had their turn.
    static void letTimersCome()
    {
        bool isOver = false;
        QTimer::singleShot(0, [&] { isOver = true; });
        EXPECT_TRUE(waitFor([&] { return isOver; }));
    }
};

TEST_F(Hints, StandUnderTheFieldsThatTheFormHas)
{
    open();
    const QString key = u"YouTube's stream key is missing."_s;
    const QString port = u"YouTube's port for RTMP is 1935."_s;
    const QString stereo = u"One track has to be stereo, on which HLS players count."_s;
    const struct
    {
        StreamingType type;
        QStringList assignments;
        QStringList forms; ///< what the form of every host says
        QStringList all;   ///< the same with a row for every connection field
    } cases[] = {
        {T::hls, {}, {}, {}},
        {T::youTube, {}, {}, {key}},
        {T::youTube,
         {u"portNumber=1936"_s, u"videoSettings.0.bitRate=40000"_s},
         {port, u"YouTube advises 10000 kbit/s for H.264 of 1080p30."_s},
         {port, key, u"YouTube advises 10000 kbit/s for H.264 of 1080p30."_s}},
        {T::facebook,
         {u"streamKey=FB-1"_s},
         {u"Facebook's port for RTMPS is 443."_s, u"Facebook takes RTMPS only."_s},
         {u"Facebook's port for RTMPS is 443."_s, u"Facebook takes RTMPS only."_s}},
        {T::rtmp, {}, {}, {u"The server's host or URL is missing."_s}},
        {T::wowza,
         {u"streamingURL=h"_s, u"authenticate=true"_s},
         {},
         {u"Login is missing; a server that asks wants login and password."_s,
          u"Password is missing; a server that asks wants login and password."_s}},
        {T::srt,
         {u"streamingURL=h?latency=120000&passphrase=x"_s, u"portNumber=70000"_s,
          u"videoSettings.0.pid=17"_s},
         {u"16 to 31 belong to DVB's tables; free are 32 to 8186."_s},
         {u"A latency is in milliseconds, at most 10000; only ffmpeg's own addresses count microseconds.\nA "
          "passphrase has 10 to 79 bytes."_s,
          u"A port is 1 to 65535."_s, u"16 to 31 belong to DVB's tables; free are 32 to 8186."_s}},
        {T::srt,
         {u"streamingURL=h"_s, u"portNumber=7000"_s},
         {u"Video 1 has the same identifier; each stream takes its own."_s},
         {u"Video 1 has the same identifier; each stream takes its own."_s}},
        // An HLS form has no field for identifiers.
        {T::hls,
         {u"audioSettings.0.inputChannels="_s, u"videoSettings.0.pid=1"_s},
         {u"A track takes at least one source channel."_s, stereo},
         {u"A track takes at least one source channel."_s, stereo}},
        {T::hls,
         {u"audioSettings.0.-"_s, u"videoSettings.0.-"_s},
         {u"There is no video rendition to send."_s, stereo},
         {u"There is no video rendition to send."_s, stereo}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(displayName(c.type).toStdString() + ' ' + c.assignments.join(u' ').toStdString());
        const auto preset = m_manager->addNewPreset(c.type);
        for (const QString &assignment : c.assignments)
            Assignment::parse(assignment)->apply(*preset);
        m_controller->setShowsConnectionRows(false);
        turn();
        letTimersCome();
        EXPECT_EQ(shown(), c.forms);
        m_controller->setShowsConnectionRows(true);
        EXPECT_EQ(shown(), c.all);
    }
}

TEST_F(Hints, LeaveTheFormStillWhileTheUserIsAtWork)
{
    const auto preset = openWithNew(T::youTube);
    const QWidget *below = control<QComboBox>("codec");
    const QPoint before = below->mapTo(&window(), QPoint());
    const auto isStill = [&] { return below->mapTo(&window(), QPoint()) == before; };
    const QStringList wrongPort{u"YouTube's port for RTMP is 1935."_s};

    // Typing tells nothing until it pauses, or the field is left.
    enter(control<QLineEdit>("portNumber"));
    QElapsedTimer pause;
    pause.start();
    type(u"44"_s);
    letTimersCome();
    EXPECT_TRUE(isStill() || pause.elapsed() > 500) << "unless the machine paused";
    EXPECT_TRUE(waitFor([&] { return shown() == wrongPort; }));
    EXPECT_FALSE(isStill());
    EXPECT_EQ(control<QLineEdit>("portNumber")->accessibleDescription(), wrongPort.first());
    control<QLineEdit>("portNumber")->selectAll();
    type(u"1935"_s);
    press(Qt::Key_Tab);
    EXPECT_TRUE(waitFor(isStill));

    // What is being clicked does not move away.
    QWindow *const native = window().windowHandle();
    QTest::mousePress(native, Qt::LeftButton, {}, QPoint(700, 690));
    preset->setProperty("portNumber", 1936);
    letTimersCome();
    EXPECT_TRUE(isStill());
    QTest::mouseRelease(native, Qt::LeftButton, {}, QPoint(700, 690));
    EXPECT_TRUE(waitFor([&] { return shown() == wrongPort; }));

    // A choice tells at once, and a preset that is selected comes with its hints.
    m_manager->addNewPreset(T::hls);
    turn();
    EXPECT_EQ(shown(), QStringList());
    m_manager->setSelectedPreset(preset);
    turn();
    EXPECT_EQ(shown(), wrongPort);
    m_manager->setSelectedPreset(m_manager->presetWithName(u"HLS Preset"_s));
    turn();
    preset->setProperty("portNumber", 1935);
    m_manager->setSelectedPreset(preset);
    turn();
    EXPECT_EQ(shown(), QStringList()) << "what changed while another form was shown";
}

TEST_F(Hints, KeepTheFieldThatTheUserIsInWhereItIs)
{
    const auto preset = openWithNew(T::srt);
    for (int i = 0; i < 8; ++i) {
        preset->newVideoSettings();
        preset->videoSettings().last()->setPid(300 + i);
    }
    turn();
    form()->verticalScrollBar()->setValue(300);
    turn();
    auto *field = controls<QLineEdit>("bitRate").at(4);
    field->setFocus();
    const QPoint before = field->mapTo(form(), QPoint());
    ASSERT_TRUE(form()->viewport()->rect().contains(before)) << before.y();
    for (int i = 1; i < 4; ++i)
        preset->videoSettings().at(i)->setPid(1);
    EXPECT_TRUE(waitFor([&] { return shown().size() >= 3; }));
    turn();
    EXPECT_EQ(field->mapTo(form(), QPoint()), before);
}

} // namespace
} // namespace vantle
