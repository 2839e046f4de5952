// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/AudioSettingsView.h"
#include "VantlePresets/editor/VideoSettingsView.h"
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "tests/editor/OpenEditor.h"

#include <QtGui/QClipboard>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QToolButton>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

class PresetForm : public test::OpenEditor
{
};

TEST_F(PresetForm, EveryKindHasItsGroupsFieldsAndButtons)
{
    open();
    const struct
    {
        StreamingType type;
        const char *view;
        bool hasConnection;
        bool canAddAndRemove;
        bool hasPid;
    } cases[] = {
        {T::hls, "vantle::HLSPresetView", false, true, false},
        {T::youTube, "vantle::YouTubeFacebookPresetView", true, false, false},
        {T::rtmp, "vantle::RTMPPresetView", false, false, false},
        {T::wowza, "vantle::RTMPPresetView", false, false, false},
        {T::facebook, "vantle::YouTubeFacebookPresetView", true, false, false},
        {T::srt, "vantle::SRTPresetView", false, true, true},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(displayName(c.type).toStdString());
        m_manager->addNewPreset(c.type);
        turn();
        ASSERT_TRUE(form());
        EXPECT_STREQ(form()->metaObject()->className(), c.view);
        EXPECT_EQ(form()->preset(), m_manager->selectedPreset());
        EXPECT_EQ(control<QLineEdit>("streamingURL") != nullptr, c.hasConnection);
        EXPECT_EQ(control<QPushButton>("videoSettings") != nullptr, c.canAddAndRemove);
        EXPECT_EQ(control<QPushButton>("audioSettings") != nullptr, c.canAddAndRemove);
        EXPECT_EQ(control<QToolButton>("videoSettings") != nullptr, c.canAddAndRemove);
        EXPECT_EQ(control<QToolButton>("audioSettings") != nullptr, c.canAddAndRemove);
        EXPECT_EQ(control<QAbstractButton>("isDefault") != nullptr, c.canAddAndRemove);
        EXPECT_EQ(controls<QLineEdit>("pid").size(), c.hasPid ? 2 : 0);
    }
}

TEST_F(PresetForm, TheConnectionIsWrittenWhileItIsEdited)
{
    const auto preset = std::dynamic_pointer_cast<RTMPVantlePreset>(openWithNew(T::facebook));
    EXPECT_EQ(control<QLineEdit>("streamingURL")->text(), preset->streamingURL());
    enter(control<QLineEdit>("streamingURL"));
    type(u"live.example.org"_s);
    EXPECT_EQ(preset->streamingURL(), u"live.example.org"_s);
    enter(control<QLineEdit>("application"));
    type(u"app"_s);
    EXPECT_EQ(preset->application(), u"app"_s);
    enter(control<QLineEdit>("portNumber"));
    type(u"seven"_s);
    EXPECT_EQ(preset->portNumber(), 1935);
    control<QLineEdit>("portNumber")->selectAll();
    type(u"443"_s);
    EXPECT_EQ(preset->portNumber(), 443);
    control<QComboBox>("streamingProtocol")->setFocus();
    press(Qt::Key_End);
    EXPECT_EQ(preset->streamingProtocol(), RTMPVantlePreset::StreamingProtocol::rtspTCP);
    EXPECT_EQ(control<QComboBox>("streamingProtocol")->currentText(), u"RTSP TCP"_s);

    EXPECT_FALSE(control<QLineEdit>("authenticationLogin"));
    click(control<QAbstractButton>("authenticate"), QPoint(10, 10));
    EXPECT_TRUE(preset->authenticate());
    enter(control<QLineEdit>("authenticationLogin"));
    type(u"me"_s);
    auto *password = control<QLineEdit>("authenticationPassword");
    enter(password);
    type(u"secret"_s);
    EXPECT_EQ(preset->authenticationLogin(), u"me"_s);
    EXPECT_EQ(preset->authenticationPassword(), u"secret"_s);
    EXPECT_EQ(password->displayText().count(u's'), 0);
    click(control<QToolButton>("revealPassword"));
    EXPECT_EQ(password->displayText(), u"secret"_s);
    m_manager->addNewPreset(T::youTube);
    turn();
    click(control<QAbstractButton>("authenticate"), QPoint(10, 10));
    EXPECT_EQ(password->echoMode(), QLineEdit::Password) << "the next preset's password is masked again";
}

TEST_F(PresetForm, AHostCanAskForAllRowsThatTheKindsFilesKeep)
{
    open();
    EXPECT_FALSE(m_controller->showsConnectionRows());
    const QStringList server{u"streamingURL"_s, u"portNumber"_s,          u"streamingProtocol"_s,
                             u"authenticate"_s, u"authenticationLogin"_s, u"authenticationPassword"_s};
    QStringList service = server + QStringList{u"streamKey"_s, u"isBackup"_s};
    service.insert(1, u"application"_s);
    const struct
    {
        StreamingType type;
        QStringList rows;
    } cases[] = {
        {T::hls, {}},           {T::youTube, service},
        {T::rtmp, server},      {T::wowza, server},
        {T::facebook, service}, {T::srt, {u"streamingURL"_s, u"portNumber"_s, u"authenticate"_s}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(displayName(c.type).toStdString());
        const auto preset = m_manager->addNewPreset(c.type);
        preset->setProperty("authenticate", true);
        m_controller->setShowsConnectionRows(true);
        turn();
        QStringList rows;
        for (const QLabel *label : form()->findChildren<QLabel *>()) {
            if (label->isVisible() && label->buddy() &&
                preset->property(label->buddy()->objectName().toUtf8().constData()).isValid())
                rows.append(label->buddy()->objectName());
        }
        EXPECT_EQ(rows, c.rows);
        m_controller->setShowsConnectionRows(false);
        turn();
        EXPECT_EQ(control<QLineEdit>("streamKey"), nullptr);
        EXPECT_EQ(control<QLineEdit>("streamingURL") != nullptr, c.rows == service);
    }
}

TEST_F(PresetForm, AWholeAddressThatIsPastedFillsTheRowsThatItNames)
{
    open();
    m_controller->setShowsConnectionRows(true);
    const struct
    {
        StreamingType type;
        QString pasted;
        QString expected; ///< host, application, port, protocol, login, password, key
    } cases[] = {
        {T::youTube, u"rtmps://a.rtmps.youtube.com:443/live2/abcd-efgh"_s,
         u"a.rtmps.youtube.com|live2|443|RTMPS|||abcd-efgh"_s},
        {T::facebook, u"rtmps://live-api-s.facebook.com:443/rtmp/FB-1-0?s_bl=1&a=%2f"_s,
         u"live-api-s.facebook.com|rtmp|443|RTMPS|||FB-1-0?s_bl=1&a=%2f"_s},
        {T::youTube, u" rtmp://b.example.com/live2 "_s, u"b.example.com|live2|1935|RTMP|||"_s},
        {T::youTube, u"https://example.com/x"_s, u"https://example.com/x|live2|1935|RTMP|||"_s},
        {T::wowza, u"rtsp://me:pw@[::1]:554/app/stream?x=1"_s,
         u"[::1]/app/stream?x=1||554|RTSP TCP|me|pw|"_s},
        {T::rtmp, u"srt://h:1"_s, u"srt://h:1||1935|RTMP|||"_s},
        {T::srt, u"srt://relay.example.com:7000?streamid=a%20b"_s,
         u"relay.example.com?streamid=a%20b||7000||||"_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.pasted.toStdString());
        const auto preset = m_manager->addNewPreset(c.type);
        turn();
        enter(control<QLineEdit>("streamingURL"));
        control<QLineEdit>("streamingURL")->insert(c.pasted);
        turn();
        QStringList values;
        for (const char *field : {"streamingURL", "application", "portNumber", "streamingProtocol",
                                  "authenticationLogin", "authenticationPassword", "streamKey"}) {
            const auto *rtmp = dynamic_cast<const RTMPVantlePreset *>(preset.get());
            values.append(qstrcmp(field, "streamingProtocol") != 0 ? preset->property(field).toString()
                          : rtmp                                   ? displayName(rtmp->streamingProtocol())
                                                                   : QString());
        }
        EXPECT_EQ(values.join(u'|'), c.expected);
        EXPECT_EQ(control<QLineEdit>("streamingURL")->text(), values.first());
    }
    // What is typed is never taken apart.
    enter(control<QLineEdit>("streamingURL"));
    type(u"srt://typed:1"_s);
    EXPECT_EQ(m_manager->selectedPreset()->property("streamingURL"), u"srt://typed:1"_s);
}

TEST_F(PresetForm, WhatIsPastedIsStoredWithoutControlCharacters)
{
    open();
    m_controller->setShowsConnectionRows(true);
    const auto preset = m_manager->addNewPreset(T::youTube);
    preset->setProperty("authenticate", true);
    turn();
    const auto paste = [this](const QString &text) {
        QGuiApplication::clipboard()->setText(text);
        press(Qt::Key_V, Qt::ControlModifier);
    };
    const QString text = u"\nke\r\x1by\0\x7f\u0085\u2028 1\t\n"_s;
    for (const char *field : {"streamingURL", "application", "authenticationLogin", "authenticationPassword",
                              "streamKey", "language", "trackName"}) {
        SCOPED_TRACE(field);
        auto *edit = control<QLineEdit>(field);
        enter(edit);
        paste(text);
        const QObject &record = preset->property(field).isValid() ? static_cast<QObject &>(*preset)
                                                                  : *preset->audioSettings().first();
        EXPECT_EQ(record.property(field).toString(), u"key 1"_s);
        press(Qt::Key_Tab);
        EXPECT_EQ(edit->text(), u"key 1"_s);
    }
    enter(control<QLineEdit>("portNumber"));
    paste(u"12\n34"_s);
    EXPECT_EQ(preset->property("portNumber"), 1935) << "two numbers are none";
    list().setFocus();
    press(Qt::Key_F2);
    ASSERT_TRUE(nameField());
    nameField()->selectAll();
    paste(text);
    press(Qt::Key_Return);
    EXPECT_EQ(preset->name(), u"key 1"_s);
}

TEST_F(PresetForm, EntriesAreAddedLast)
{
    const auto preset = openWithNew(T::hls);
    const auto first = preset->audioSettings().first();
    click(control<QPushButton>("audioSettings"));
    click(control<QPushButton>("audioSettings"));
    click(control<QPushButton>("videoSettings"));
    ASSERT_EQ(preset->audioSettings().size(), 3);
    EXPECT_EQ(preset->audioSettings().first(), first);
    EXPECT_EQ(preset->audioSettings().last()->delegate(), preset);
    EXPECT_EQ(preset->videoSettings().size(), 2);
    EXPECT_EQ(controls<QLineEdit>("trackName").size(), 3);
}

TEST_F(PresetForm, AnAddButtonStaysInSight)
{
    const auto preset = openWithNew(T::srt);
    for (const char *list : {"videoSettings", "audioSettings"}) {
        auto *button = control<QPushButton>(list);
        button->setFocus();
        for (int i = 0; i < 12; ++i) {
            press(Qt::Key_Space);
            const QRect rect(button->mapTo(form()->viewport(), QPoint()), button->size());
            EXPECT_TRUE(form()->viewport()->rect().contains(rect)) << list << ' ' << i;
        }
    }
    EXPECT_EQ(preset->videoSettings().size() + preset->audioSettings().size(), 2 + 24);
}

TEST_F(PresetForm, AnEmptyPresetHasNothingButItsButtons)
{
    const auto preset = openWithNew(T::srt);
    preset->setVideoSettings({});
    preset->setAudioSettings({});
    turn();
    EXPECT_TRUE(control<QPushButton>("videoSettings"));
    EXPECT_TRUE(control<QPushButton>("audioSettings"));
    EXPECT_FALSE(control<QLineEdit>("bitRate"));
    EXPECT_FALSE(control<QLineEdit>("trackName"));
}

TEST_F(PresetForm, HundredsOfEntriesAreFormsOnlyWhereTheyAreSeen)
{
    const auto preset = openWithNew(T::srt);
    VideoSettingsList renditions;
    AudioSettingsList tracks;
    for (int i = 0; i < 200; ++i) {
        renditions.append(VideoSettings::create());
        renditions.last()->setPid(1000 + i);
        tracks.append(AudioSettings::create());
        tracks.last()->setPid(5000 + i);
    }
    preset->setVideoSettings(renditions);
    preset->setAudioSettings(tracks);
    turn();

    // Once through the whole form, a page at a time: every entry appears, and forms are used again.
    QSet<int> seen;
    QScrollBar *bar = form()->verticalScrollBar();
    for (int previous = -1; previous != bar->value();) {
        for (const QLineEdit *field : controls<QLineEdit>("pid")) {
            const QRect rect(field->mapTo(form(), QPoint()), field->size());
            if (form()->viewport()->rect().intersects(rect))
                seen.insert(field->text().toInt());
        }
        previous = bar->value();
        bar->setValue(bar->value() + bar->pageStep() / 2);
        turn();
    }
    EXPECT_EQ(seen.size(), 400);
    EXPECT_LT(form()->findChildren<VideoSettingsView *>().size(), 40);
    EXPECT_LT(form()->findChildren<AudioSettingsView *>().size(), 40);

    // The Tab key reaches the fields in their order although they were built in another one.
    bar->setValue(0);
    turn();
    control<QLineEdit>("pid")->setFocus();
    for (int rendition = 1; rendition <= 20; ++rendition) {
        do
            press(Qt::Key_Tab);
        while (QApplication::focusWidget()->objectName() != u"pid"_s);
        EXPECT_EQ(qobject_cast<QLineEdit *>(QApplication::focusWidget())->text().toInt(), 1000 + rendition);
    }
    // A field that is scrolled out of sight keeps the focus and the keys.
    bar->setValue(bar->maximum());
    turn();
    type(u"7"_s);
    EXPECT_EQ(renditions[20]->pid(), 7);
}

TEST_F(PresetForm, AFieldThatIsEditedWhenThePresetChangesWritesToItsOwnPreset)
{
    const auto first = openWithNew(T::hls);
    enter(control<QLineEdit>("trackName"));
    type(u"Mine"_s);
    const auto second = m_manager->addNewPreset(T::hls);
    turn();
    EXPECT_EQ(control<QLineEdit>("trackName")->text(), u"English"_s);
    EXPECT_EQ(first->audioSettings().first()->trackName(), u"Mine"_s);
    EXPECT_EQ(second->audioSettings().first()->trackName(), u"English"_s);
}

} // namespace
} // namespace vantle
