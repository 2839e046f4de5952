// SPDX-License-Identifier: MIT
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SRTVantlePreset.h"
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"

#include <QtCore/QVariant>

#include <gtest/gtest.h>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;

/// What the connection of a preset holds, in one text that a failed comparison shows.
QString connectionOf(const VantlePreset &preset)
{
    QStringList values{displayName(preset.type()), preset.name()};
    for (const char *key : {"streamingURL", "portNumber", "authenticate", "authenticationLogin",
                            "authenticationPassword", "application", "isBackup", "streamKey"})
        values += preset.property(key).toString();
    return values.join(u'|');
}

std::shared_ptr<RTMPVantlePreset> serviceSource(const QByteArray &kind, bool authenticate)
{
    auto source = decodeAs<RTMPVantlePreset>(presetText(kind).text());
    source->setName(u"Source"_s);
    source->setAuthenticate(authenticate);
    source->setIsBackup(true);
    source->setStreamKey(u"key"_s);
    source->setApplication(u"app"_s);
    return source;
}

TEST(PresetUpdate, TakesWhatTheOtherDocumentWouldKeep)
{
    struct Row
    {
        QByteArray kind;
        bool authenticate;
        QString result;
    };
    for (const Row &row :
         {Row{"YouTube", true, u"YouTube|Source|host|443|true|login|password|app|true|key"_s},
          {"Facebook", false, u"Facebook|Source|host|443|false|old login|old password|app|true|key"_s},
          {"RTMP", true, u"RTMP|Source|host|443|true|login|password|old app|false|old key"_s},
          {"Wowza", false, u"Wowza|Source|host|443|false|old login|old password|old app|false|old key"_s}}) {
        const auto source = serviceSource(row.kind, row.authenticate);
        const auto target =
            RTMPVantlePreset::withType(StreamingType::facebook, u"Old"_s, false, u"old key"_s);
        target->setApplication(u"old app"_s);
        target->setAuthenticationLogin(u"old login"_s);
        target->setAuthenticationPassword(u"old password"_s);
        const auto id = target->uuid();
        const auto track = target->defaultAudioSettings();
        target->update(*source);
        EXPECT_EQ(connectionOf(*target), row.result);
        EXPECT_EQ(target->streamingProtocol(), RTMPVantlePreset::StreamingProtocol::rtmps);
        EXPECT_EQ(target->videoSettings(), source->videoSettings()) << "the same objects";
        EXPECT_EQ(target->audioSettings(), source->audioSettings());
        EXPECT_EQ(target->uuid(), id);
        EXPECT_EQ(target->defaultAudioSettings(), track);
    }
}

TEST(PresetUpdate, OfAnSrtPreset)
{
    const auto target = SRTVantlePreset::withType(StreamingType::srt, u"Old"_s);
    target->setStreamKey(u"old key"_s);
    target->update(*serviceSource("YouTube", true));
    EXPECT_EQ(connectionOf(*target), u"YouTube|Source|host|443|true||||false|old key"_s);

    const auto other = decodeAs<SRTVantlePreset>(presetText("SRT").with("portNumber", "9000").text());
    other->setName(u"Other"_s);
    other->setStreamKey(u"other key"_s);
    target->update(*other);
    EXPECT_EQ(connectionOf(*target), u"SRT|Other|host|9000|true||||false|old key"_s);
    EXPECT_EQ(target->audioSettings(), other->audioSettings());
}

TEST(PresetUpdate, OfTheBaseLeavesTheNameAndSharesTheSettings)
{
    const auto source = makePreset(StreamingType::hls, u"Source"_s);
    const std::shared_ptr<VantlePreset> target = makePreset(StreamingType::rtmp, u"Target"_s);
    target->update(*source);
    EXPECT_EQ(target->type(), StreamingType::hls);
    EXPECT_EQ(target->name(), u"Target"_s);
    target->newVideoSettings();
    EXPECT_EQ(source->videoSettings().size(), 1) << "the list itself is a copy";
    target->videoSettings()[0]->setPid(77);
    EXPECT_EQ(source->videoSettings()[0]->pid(), 77);
}

TEST(PresetUpdate, RemovingARenditionTakesTheFirstEqualOne)
{
    const auto preset = makePreset(StreamingType::hls, u"Show"_s);
    preset->newVideoSettings();
    preset->videoSettings()[1]->setPid(300); // does not tell renditions apart
    const auto second = preset->videoSettings()[1];
    preset->removeVideoSetting(*second);
    EXPECT_EQ(preset->videoSettings(), VideoSettingsList{second});
    const auto other = VideoSettings::create();
    other->setFrameRate(25);
    preset->removeVideoSetting(*other);
    EXPECT_EQ(preset->videoSettings().size(), 1);
}

TEST(PresetUpdate, HelpersKnowEveryRawValueAndNoOther)
{
    EXPECT_EQ(StreamingProtocolHelper::allRawValues(), (QList<int>{1, 2, 3, 4}));
    EXPECT_EQ(StreamingProtocolHelper::allDisplayNames().join(u','), u"RTMP,RTMPS,RTSP UDP,RTSP TCP"_s);
    EXPECT_EQ(SRTModeHelper::allDisplayNames().join(u','), u"Caller,Listener"_s);
    for (const qint64 unknown : {qint64{0}, qint64{5}, qint64{-1}, (qint64{1} << 32) + 1}) {
        EXPECT_EQ(StreamingProtocolHelper::displayName(unknown), QString()) << unknown;
        EXPECT_EQ(SRTModeHelper::displayName(unknown), QString()) << unknown;
    }
    EXPECT_EQ(SRTModeHelper::displayName(2), u"Listener"_s);
}

} // namespace
} // namespace vantle::test
