// SPDX-License-Identifier: MIT
#include "VantlePresets/Version.h"
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SRTVantlePreset.h"
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QMetaEnum>
#include <QtCore/QMetaProperty>

#include <gtest/gtest.h>

#include <algorithm>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;

QStringList sortedKeys(const QJsonObject &object)
{
    return object.keys(); // which Qt sorts
}

QStringList sorted(QStringList keys)
{
    keys.sort();
    return keys;
}

TEST(Fields, AreThoseThatDocumentsHold)
{
    for (const StreamingType type : streamingTypes().values()) {
        for (const bool authenticate : {false, true}) {
            const auto preset = makePreset(type, u"A"_s);
            preset->setProperty("authenticate", authenticate);
            const QJsonObject document =
                QJsonDocument::fromJson(preset->encoded(document::Format::compact)).object();
            QStringList kept;
            for (const Field &field : preset->fields()) {
                const char *const flag = field.keptWhile().data();
                if (field.isKept(type) && (!flag || preset->property(flag).toBool()))
                    kept += field.key();
            }
            EXPECT_EQ(sortedKeys(document), sorted(kept)) << displayName(type).toStdString();
            EXPECT_EQ(presetFields(type).size(), preset->fields().size());

            const auto keysOf = [](const QList<Field> &fields) {
                QStringList keys;
                for (const Field &field : fields)
                    keys += field.key();
                return sorted(keys);
            };
            EXPECT_EQ(sortedKeys(document["videoSettings"_L1][0].toObject()),
                      keysOf(VideoSettings::fields()));
            EXPECT_EQ(sortedKeys(document["audioSettings"_L1][0].toObject()),
                      keysOf(AudioSettings::fields()));
        }
    }
}

TEST(Fields, ArePropertiesOfTheirRecords)
{
    QStringList secrets;
    const auto check = [&](const QObject &record, const QList<Field> &fields) {
        for (const Field &field : fields) {
            SCOPED_TRACE(field.key().data());
            const int index = record.metaObject()->indexOfProperty(field.key().data());
            ASSERT_GE(index, 0);
            const QMetaProperty property = record.metaObject()->property(index);
            EXPECT_TRUE(property.isWritable() || !field.isAssignable());
            EXPECT_EQ(property.isEnumType(), field.type() == Field::Type::choice);
            EXPECT_EQ(field.choices().isEmpty(), field.type() != Field::Type::choice);
            EXPECT_FALSE(field.label().isEmpty());
            if (field.isSecret())
                secrets += QString::fromLatin1(record.metaObject()->className()) + u'.' + field.key();
        }
    };
    check(*VideoSettings::create(), VideoSettings::fields());
    check(*AudioSettings::create(), AudioSettings::fields());
    for (const StreamingType type : {StreamingType::hls, StreamingType::rtmp, StreamingType::srt})
        check(*makePreset(type, {}), presetFields(type));
    EXPECT_EQ(secrets.join(u' '), u"vantle::RTMPVantlePreset.authenticationPassword "
                                  "vantle::RTMPVantlePreset.streamKey vantle::SRTVantlePreset.streamKey"_s);
}

TEST(Fields, SetPropertyConvertsAndRefuses)
{
    struct Row
    {
        std::shared_ptr<QObject> record;
        const char *property;
        QVariant value;
        QVariant result; ///< invalid: refused
    };
    const auto video = VideoSettings::create();
    const auto track = AudioSettings::create();
    const std::shared_ptr<QObject> preset = makePreset(StreamingType::rtmp, {});
    const auto variants = [](std::initializer_list<QVariant> values) {
        return QVariant(QVariantList(values));
    };
    for (const Row &row : {
             Row{video, "codec", u"HEVC"_s, 2},
             {video, "codec", QByteArray("H.264"), 1},
             {video, "codec", u"hevc"_s, 2}, // the enumerator
             {video, "codec", u"VP9"_s, {}},
             {video, "codec", u""_s, {}},
             {video, "codec", 7, {}},
             {video, "codec", 1.5, {}},
             {video, "codec", 1.0, 1},
             {video, "codec", qint64{0x100000001}, {}},
             {video, "codec", std::numeric_limits<quint64>::max(), {}},
             {video, "codec", 2U, 2},
             {video, "resolution", u"1280 x 720"_s, 4},
             {video, "resolution", -1, -1},
             {video, "resolution", std::numeric_limits<uint>::max(), {}},
             {video, "resolution", 8, {}},
             {track, "codec", 1, {}},
             {track, "codec", u"AAC LC"_s, 0},
             {preset, "streamingProtocol", u"RTSP UDP"_s, 3},
             {preset, "streamingProtocol", 5, {}},
             {preset, "type", u"Facebook"_s, 5},
             {preset, "type", 0, {}},
             {preset, "portNumber", u"443"_s, 443},
             {preset, "portNumber", u"https"_s, {}},
         }) {
        const QVariant before = row.record->property(row.property);
        EXPECT_EQ(row.record->setProperty(row.property, row.value), row.result.isValid())
            << row.property << ' ' << row.value.toString().toStdString();
        const QVariant after = row.record->property(row.property);
        EXPECT_EQ(after.toInt(), row.result.isValid() ? row.result.toInt() : before.toInt()) << row.property;
    }
    EXPECT_EQ(video->property("resolution").toString(), u"custom"_s);

    EXPECT_TRUE(track->setProperty("inputChannels", variants({2, u"3"_s, 4.0})));
    EXPECT_EQ(track->inputChannels(), (QList<qint64>{2, 3, 4}));
    EXPECT_FALSE(track->setProperty("inputChannels", variants({2, 0.5})));
    EXPECT_FALSE(track->setProperty("inputChannels", variants({u"left"_s})));
    EXPECT_EQ(track->inputChannels(), (QList<qint64>{2, 3, 4}));
}

TEST(Fields, TheVersionOfTheHeadersIsThatOfTheLibrary)
{
    EXPECT_EQ(presetsVersion(), VANTLE_PRESETS_VERSION);
    EXPECT_STREQ(presetsVersionText(), VANTLE_PRESETS_VERSION_STR);
    EXPECT_LT(VANTLE_PRESETS_VERSION_CHECK(0, 1, 255), VANTLE_PRESETS_VERSION_CHECK(0, 2, 0));
}

} // namespace
} // namespace vantle::test
