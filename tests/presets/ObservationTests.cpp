// SPDX-License-Identifier: MIT
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SRTVantlePreset.h"
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QMetaProperty>

#include <gtest/gtest.h>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;

/// Notes every signal of a record in order, with the value that the record shows at that moment.
class SignalRecorder : public QObject
{
    Q_OBJECT

public:
    explicit SignalRecorder(ObservableRecord &record) : m_record(record)
    {
        const QMetaMethod slot = metaObject()->method(metaObject()->indexOfSlot("note()"));
        const QMetaObject &meta = *record.metaObject();
        for (int i = QObject::staticMetaObject.methodCount(); i < meta.methodCount(); ++i) {
            if (meta.method(i).methodType() == QMetaMethod::Signal)
                connect(&record, meta.method(i), this, slot);
        }
    }

    /// Which property's value the notes show besides the signal's name.
    void watch(const char *property) { m_property = property; }
    [[nodiscard]] QStringList taken() { return std::exchange(m_notes, {}); }

public Q_SLOTS:
    void note()
    {
        QString entry = QString::fromLatin1(m_record.metaObject()->method(senderSignalIndex()).name());
        if (m_property)
            entry += u' ' + m_record.property(m_property).toString();
        m_notes += entry;
    }

private:
    ObservableRecord &m_record;
    const char *m_property = nullptr;
    QStringList m_notes;
};

TEST(Observation, TheAnnouncementComesBeforeTheStoreTheValueAfter)
{
    const auto preset = makePreset(StreamingType::hls, u"Old"_s);
    SignalRecorder recorder(*preset);
    recorder.watch("name");
    preset->setName(u"New"_s);
    preset->setName(u"New"_s); // equal values are announced as well
    EXPECT_EQ(recorder.taken(), (QStringList{u"objectWillChange Old"_s, u"nameChanged New"_s,
                                             u"objectWillChange New"_s, u"nameChanged New"_s}));
    preset->update();
    EXPECT_EQ(recorder.taken(), QStringList{u"objectWillChange New"_s});
    preset->setType(StreamingType::srt);
    EXPECT_EQ(recorder.taken(), QStringList()) << "the kind is not observable";
}

TEST(Observation, CorrectionsAreChangesOfTheirOwn)
{
    const auto video = VideoSettings::create();
    SignalRecorder recorder(*video);
    recorder.watch("bitRate");
    video->setBitRate(300000);
    EXPECT_EQ(recorder.taken(), (QStringList{u"objectWillChange 4500"_s, u"bitRateChanged 300000"_s,
                                             u"objectWillChange 300000"_s, u"bitRateChanged 240000"_s}));
    recorder.watch(nullptr);
    video->setResolution(VideoResolution::_640_360);
    EXPECT_EQ(recorder.taken(),
              (QStringList{u"objectWillChange"_s, u"resolutionChanged"_s, u"objectWillChange"_s,
                           u"customWidthChanged"_s, u"objectWillChange"_s, u"customHeightChanged"_s}));
}

TEST(Observation, UpdatesAssignInTheirOrder)
{
    struct Row
    {
        std::shared_ptr<ObservableRecord> target;
        std::function<void()> update;
        QString order;
    };
    const auto video = VideoSettings::create();
    const auto audio = AudioSettings::create();
    const auto service = RTMPVantlePreset::withType(StreamingType::rtmp, {}, false, {});
    const auto source = decodeAs<RTMPVantlePreset>(presetText("YouTube").text());
    const auto srt = SRTVantlePreset::withType(StreamingType::srt, {});
    for (
        const Row &row :
        {Row{video, [&] { video->update(*VideoSettings::create()); },
             u"codec resolution customWidth customHeight customWidth customHeight frameRate bitRate profile pid"_s},
         {audio, [&] { audio->update(*AudioSettings::create()); },
          u"codec bitRate language trackName inputChannels sampleRate bitsPerSample isDefault pid"_s},
         {service, [&] { service->update(*source); },
          u"name streamingURL streamingProtocol portNumber authenticate authenticationLogin "
          "authenticationPassword application isBackup streamKey videoSettings audioSettings"_s},
         {srt, [&] { srt->update(*source); },
          u"name streamingURL portNumber authenticate videoSettings audioSettings"_s}}) {
        SignalRecorder recorder(*row.target);
        row.update();
        QStringList expected;
        for (const QString &name : row.order.split(u' '))
            expected << u"objectWillChange"_s << name + u"Changed"_s;
        EXPECT_EQ(recorder.taken().join(u' '), expected.join(u' '));
    }
}

/// A value that differs from the one given, for every type of property that records have.
QVariant otherValue(const QVariant &value)
{
    if (value.typeId() == QMetaType::QString)
        return QVariant(u"other"_s);
    if (value.typeId() == QMetaType::Bool)
        return !value.toBool();
    if (value.typeId() == QMetaType::LongLong)
        return value.toLongLong() + 1;
    if (value.typeId() == QMetaType::Double)
        return 59.94;
    if (value.metaType() == QMetaType::fromType<QList<qint64>>())
        return QVariant::fromValue(QList<qint64>{3});
    if (value.metaType() == QMetaType::fromType<VideoSettingsList>())
        return QVariant::fromValue(VideoSettingsList{VideoSettings::create()});
    if (value.metaType() == QMetaType::fromType<AudioSettingsList>())
        return QVariant::fromValue(AudioSettingsList{AudioSettings::create()});
    if (value.metaType() == QMetaType::fromType<std::shared_ptr<AudioSettings>>())
        return QVariant::fromValue(AudioSettings::create());
    return value; // the enumerations have a test of their own
}

TEST(Observation, EveryPropertyIsReadWrittenAndAnnouncedByName)
{
    const std::map<const QMetaObject *, int> ownProperties{{&VideoSettings::staticMetaObject, 8},
                                                           {&AudioSettings::staticMetaObject, 9},
                                                           {&RTMPVantlePreset::staticMetaObject, 13},
                                                           {&SRTVantlePreset::staticMetaObject, 10}};
    for (const auto &record : std::initializer_list<std::shared_ptr<ObservableRecord>>{
             VideoSettings::create(), AudioSettings::create(),
             RTMPVantlePreset::withType(StreamingType::rtmp, {}, false, {}),
             SRTVantlePreset::withType(StreamingType::srt, {})}) {
        const QMetaObject &meta = *record->metaObject();
        int observable = 0;
        for (int i = QObject::staticMetaObject.propertyCount(); i < meta.propertyCount(); ++i) {
            const QMetaProperty property = meta.property(i);
            ASSERT_TRUE(record->property(property.name()).isValid()) << property.name();
            if (!property.hasNotifySignal())
                continue;
            ++observable;
            const QVariant wanted = otherValue(record->property(property.name()));
            SignalRecorder recorder(*record);
            EXPECT_TRUE(record->setProperty(property.name(), wanted)) << property.name();
            EXPECT_EQ(record->property(property.name()), wanted) << property.name();
            const QStringList notes = recorder.taken();
            ASSERT_GE(notes.size(), 2) << property.name();
            EXPECT_EQ(notes[0], u"objectWillChange"_s);
            EXPECT_EQ(notes[1], QString::fromLatin1(property.name()) + u"Changed"_s);
        }
        EXPECT_EQ(observable, ownProperties.at(&meta)) << meta.className();
    }
}

TEST(Observation, HostsThatKnowNumbersOnlySetEnumerations)
{
    const auto video = VideoSettings::create();
    EXPECT_TRUE(video->setProperty("codec", 2));
    EXPECT_EQ(video->codec(), VideoCodec::hevc);
    EXPECT_EQ(video->property("codec").toInt(), 2);
    EXPECT_TRUE(video->setProperty("resolution", -1));
    EXPECT_EQ(video->resolution(), VideoResolution::_custom);
    const auto track = AudioSettings::create();
    EXPECT_TRUE(track->setProperty("codec", 0));
    EXPECT_EQ(track->property("codec").toInt(), 0);
    const auto preset = makePreset(StreamingType::rtmp, {});
    EXPECT_TRUE(preset->setProperty("streamingProtocol", 4));
    EXPECT_EQ(preset->property("streamingProtocol").toInt(), 4);
    EXPECT_TRUE(preset->setProperty("type", 5));
    EXPECT_EQ(preset->type(), StreamingType::facebook);
}

} // namespace
} // namespace vantle::test

#include "ObservationTests.moc"
