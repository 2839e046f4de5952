// SPDX-License-Identifier: MIT
#include "VantlePresets/document/RecordTable.h"
#include "VantlePresets/settings/AudioSettingsPrivate.h"
#include "VantlePresets/settings/EnumerationFacts.h"

namespace vantle {
namespace {

using Data = AudioSettingsPrivate;
using Audio = AudioSettings;
using Rows = FieldRows<Audio, Data>;

constexpr RecordTable kFields{std::array{
    Rows::field<&Data::codec, &Audio::setCodec>("codec", "Codec").order(1, 1),
    Rows::derived("audioCodecFormatID", "Format identifier", Field::Type::integer,
                  [](const Data &data, document::DocumentWriter &writer, const FieldFacts &field) {
                      writer.integer(field.key.data(), audioCodecFormatID(data.codec));
                  })
        .means("Written for other readers, 1633772320 for AAC LC; not read."),
    Rows::field<&Data::bitRate, &Audio::setBitRate>("bitRate", "Bit rate").order(3, 2).in("kbit/s"),
    Rows::field<&Data::language, &Audio::setLanguage>("language", "Language")
        .order(4, 3)
        .means("A language code such as en."),
    Rows::field<&Data::trackName, &Audio::setTrackName>("trackName", "Name")
        .order(5, 4)
        .means("What players show."),
    Rows::field<&Data::sampleRate, &Audio::setSampleRate>("sampleRate", "Sample rate").order(6, 6).in("Hz"),
    Rows::field<&Data::bitsPerSample, &Audio::setBitsPerSample>("bitsPerSample", "Bits")
        .order(7, 7)
        .in("bits per sample"),
    Rows::field<&Data::isDefault, &Audio::setIsDefault>("isDefault", "Default")
        .order(8, 8)
        .means("Whether players choose this track by themselves."),
    Rows::field<&Data::inputChannels, &Audio::setInputChannels>("inputChannels", "Channels")
        .order(2, 5)
        .means("Source channels by index from 0, in the order of the track's own channels."),
    Rows::field<&Data::pid, &Audio::setPid>("pid", "PID")
        .order(9, 9)
        .range(kLeastPid, kGreatestPid)
        .whenAbsent(kPidWhenAbsent)
        .means("The MPEG-TS packet identifier."),
}};

} // namespace

std::shared_ptr<AudioSettings> AudioSettingsPrivate::decode(const document::ObjectReader &object)
{
    auto track = AudioSettings::create();
    kFields.read(*track->d, object);
    return track;
}

void AudioSettingsPrivate::encode(const AudioSettings &settings, document::DocumentWriter &writer)
{
    writer.beginObject();
    kFields.write(*settings.d, writer);
    writer.endObject();
}

void AudioSettingsPrivate::update(AudioSettings &settings, const AudioSettings &other)
{
    kFields.update(settings, *settings.d, *other.d);
}

const QList<Field> &AudioSettings::fields()
{
    static const QList<Field> list = kFields.fields();
    return list;
}

std::shared_ptr<AudioSettings> AudioSettings::decoded(QByteArrayView object)
{
    const document::Document json(object);
    return AudioSettingsPrivate::decode(json.root());
}

QByteArray AudioSettings::encoded(document::Format format) const
{
    return document::encode(
        format, [this](document::DocumentWriter &writer) { AudioSettingsPrivate::encode(*this, writer); });
}

} // namespace vantle
