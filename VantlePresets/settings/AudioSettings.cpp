// SPDX-License-Identifier: MIT
#include "VantlePresets/settings/AudioSettings.h"

#include "VantlePresets/core/ObjectId.h"
#include "VantlePresets/document/DocumentReader.h"
#include "VantlePresets/document/DocumentWriter.h"

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

constexpr EnumerationTable<AudioCodecID, 1> kCodecs{"unexpected AudioCodecID value",
                                                    {{{AudioCodecID::aacLC, "AAC LC"_L1}}}};

} // namespace

const EnumerationTable<AudioCodecID, 1> &audioCodecs()
{
    return kCodecs;
}
QString displayValue(AudioCodecID codec)
{
    return kCodecs.text(codec);
}

quint32 audioCodecFormatID(AudioCodecID codec)
{
    if (codec != AudioCodecID::aacLC)
        programmingFault("unexpected AudioCodecID value");
    return 0x61616320; // 'aac '
}

AudioSettings::AudioSettings(Key) : m_id(newObjectId()) {}

std::shared_ptr<AudioSettings> AudioSettings::create()
{
    return std::make_shared<AudioSettings>(Key{});
}

std::shared_ptr<AudioSettings> AudioSettings::decode(const document::ObjectReader &object)
{
    auto track = create();
    const QUtf8StringView codec = object.text("codec");
    if (const auto known = kCodecs.fromText(codec))
        track->m_codec = *known;
    else
        object.fail("codec", "Invalid AudioCodec display string: "_L1 + codec.toString());
    const document::ArrayReader channels = object.array("inputChannels");
    track->m_inputChannels.clear();
    track->m_inputChannels.reserve(channels.size());
    for (qsizetype i = 0; i < channels.size(); ++i)
        track->m_inputChannels.append(channels.integerAt(i));
    track->m_bitRate = object.integer("bitRate");
    track->m_language = object.string("language");
    track->m_trackName = object.string("trackName");
    track->m_sampleRate = object.integer("sampleRate");
    track->m_bitsPerSample = object.integer("bitsPerSample");
    track->m_isDefault = object.boolean("isDefault");
    track->m_pid = object.optionalInteger("pid").value_or(256);
    return track;
}

std::shared_ptr<AudioSettings> AudioSettings::copy() const
{
    auto track = create();
    track->update(*this);
    return track;
}

void AudioSettings::encode(document::DocumentWriter &writer) const
{
    writer.beginObject();
    writer.string("codec", kCodecs.text(m_codec));
    writer.integer("audioCodecFormatID", audioCodecFormatID());
    writer.integer("bitRate", m_bitRate);
    writer.string("language", m_language);
    writer.string("trackName", m_trackName);
    writer.integer("sampleRate", m_sampleRate);
    writer.integer("bitsPerSample", m_bitsPerSample);
    writer.boolean("isDefault", m_isDefault);
    writer.integers("inputChannels", m_inputChannels);
    writer.integer("pid", m_pid);
    writer.endObject();
}

void AudioSettings::setBitRate(qint64 bitRate)
{
    assign(m_bitRate, bitRate, &AudioSettings::bitRateChanged);
}

void AudioSettings::setBitsPerSample(qint64 bitsPerSample)
{
    assign(m_bitsPerSample, bitsPerSample, &AudioSettings::bitsPerSampleChanged);
}

void AudioSettings::setSampleRate(qint64 sampleRate)
{
    assign(m_sampleRate, sampleRate, &AudioSettings::sampleRateChanged);
}

void AudioSettings::setInputChannels(const QList<qint64> &channels)
{
    assign(m_inputChannels, channels, &AudioSettings::inputChannelsChanged);
}

void AudioSettings::setCodec(AudioCodecID codec)
{
    assign(m_codec, codec, &AudioSettings::codecChanged);
}

void AudioSettings::setLanguage(const QString &language)
{
    assign(m_language, language, &AudioSettings::languageChanged);
}

void AudioSettings::setTrackName(const QString &trackName)
{
    assign(m_trackName, trackName, &AudioSettings::trackNameChanged);
}

void AudioSettings::setIsDefault(bool isDefault)
{
    const bool isChange = isDefault != m_isDefault;
    assign(m_isDefault, isDefault, &AudioSettings::isDefaultChanged);
    if (!isChange)
        return;
    if (const auto delegate = m_delegate.lock())
        delegate->audioSettingsDidChangeDefault(shared_from_this(), isDefault);
}

void AudioSettings::setPid(qint64 pid)
{
    assign(m_pid, pid, &AudioSettings::pidChanged);
}

QString AudioSettings::variantName() const
{
    QString name = m_trackName + u'_' + QString::number(m_bitRate);
    return name.replace(u' ', u'_').replace(u'.', u'_');
}

QString AudioSettings::displayName() const
{
    return "Audio Track "_L1 + m_trackName;
}

QString AudioSettings::aggregateDescription() const
{
    return m_trackName + " ("_L1 + m_language + ") - "_L1 + displayValue(m_codec) + " - @ "_L1 +
           QString::number(m_sampleRate) + "Hz - "_L1 + QString::number(m_bitRate) + " kbps"_L1;
}

void AudioSettings::update(const AudioSettings &other)
{
    setCodec(other.m_codec);
    setBitRate(other.m_bitRate);
    setLanguage(other.m_language);
    setTrackName(other.m_trackName);
    setInputChannels(other.m_inputChannels);
    setSampleRate(other.m_sampleRate);
    setBitsPerSample(other.m_bitsPerSample);
    setIsDefault(other.m_isDefault);
    setPid(other.m_pid);
}

} // namespace vantle
