// SPDX-License-Identifier: MIT
#include "VantlePresets/settings/AudioSettings.h"

#include "VantlePresets/core/ObjectId.h"
#include "VantlePresets/settings/AudioSettingsPrivate.h"
#include "VantlePresets/settings/EnumerationFacts.h"

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

constexpr EnumerationTable<AudioCodecID>::Case kCodecCases[] = {{AudioCodecID::aacLC, "AAC LC"_L1}};
constexpr EnumerationTable<AudioCodecID> kCodecs{"unexpected AudioCodecID value", kCodecCases};

/// Source channels as scripts have them. A list with anything else but integers is none.
std::optional<QList<qint64>> channelsFromVariants(const QVariantList &variants)
{
    QList<qint64> channels;
    for (const QVariant &variant : variants) {
        bool isInteger = false;
        const double value = variant.toDouble(&isInteger);
        channels.append(variant.toLongLong());
        if (!isInteger || static_cast<double>(channels.last()) != value)
            return std::nullopt;
    }
    return channels;
}

[[maybe_unused]] const bool kConverted =
    registerConversions<AudioCodecID>() &&
    registerConversion<QVariantList, QList<qint64>>(channelsFromVariants);

} // namespace

AudioSettingsDelegate::~AudioSettingsDelegate() = default;

const EnumerationTable<AudioCodecID> &audioCodecs()
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

AudioSettings::AudioSettings(Key) : d(std::make_unique<AudioSettingsPrivate>())
{
    d->id = newObjectId();
}

AudioSettings::~AudioSettings() = default;

std::shared_ptr<AudioSettings> AudioSettings::create()
{
    return std::make_shared<AudioSettings>(Key{});
}

std::shared_ptr<AudioSettings> AudioSettings::copy() const
{
    auto track = create();
    track->update(*this);
    return track;
}

qint64 AudioSettings::bitRate() const
{
    return d->bitRate;
}

qint64 AudioSettings::bitsPerSample() const
{
    return d->bitsPerSample;
}

qint64 AudioSettings::sampleRate() const
{
    return d->sampleRate;
}

const QList<qint64> &AudioSettings::inputChannels() const
{
    return d->inputChannels;
}

AudioCodecID AudioSettings::codec() const
{
    return d->codec;
}

const QString &AudioSettings::language() const
{
    return d->language;
}

const QString &AudioSettings::trackName() const
{
    return d->trackName;
}

bool AudioSettings::isDefault() const
{
    return d->isDefault;
}

qint64 AudioSettings::pid() const
{
    return d->pid;
}

const QUuid &AudioSettings::id() const
{
    return d->id;
}

std::shared_ptr<AudioSettingsDelegate> AudioSettings::delegate() const
{
    return d->delegate.lock();
}

void AudioSettings::setDelegate(const std::weak_ptr<AudioSettingsDelegate> &delegate)
{
    d->delegate = delegate;
}

quint32 AudioSettings::audioCodecFormatID() const
{
    return vantle::audioCodecFormatID(d->codec);
}

void AudioSettings::setBitRate(qint64 bitRate)
{
    assign(d->bitRate, bitRate, &AudioSettings::bitRateChanged);
}

void AudioSettings::setBitsPerSample(qint64 bitsPerSample)
{
    assign(d->bitsPerSample, bitsPerSample, &AudioSettings::bitsPerSampleChanged);
}

void AudioSettings::setSampleRate(qint64 sampleRate)
{
    assign(d->sampleRate, sampleRate, &AudioSettings::sampleRateChanged);
}

void AudioSettings::setInputChannels(const QList<qint64> &channels)
{
    assign(d->inputChannels, channels, &AudioSettings::inputChannelsChanged);
}

void AudioSettings::setCodec(AudioCodecID codec)
{
    assign(d->codec, codec, &AudioSettings::codecChanged);
}

void AudioSettings::setLanguage(const QString &language)
{
    assign(d->language, language, &AudioSettings::languageChanged);
}

void AudioSettings::setTrackName(const QString &trackName)
{
    assign(d->trackName, trackName, &AudioSettings::trackNameChanged);
}

void AudioSettings::setIsDefault(bool isDefault)
{
    const bool isChange = isDefault != d->isDefault;
    assign(d->isDefault, isDefault, &AudioSettings::isDefaultChanged);
    if (!isChange)
        return;
    if (const auto delegate = d->delegate.lock())
        delegate->audioSettingsDidChangeDefault(shared_from_this(), isDefault);
}

void AudioSettings::setPid(qint64 pid)
{
    assign(d->pid, pid, &AudioSettings::pidChanged);
}

QString AudioSettings::variantName() const
{
    QString name = d->trackName + u'_' + QString::number(d->bitRate);
    return name.replace(u' ', u'_').replace(u'.', u'_');
}

QString AudioSettings::displayName() const
{
    return "Audio Track "_L1 + d->trackName;
}

QString AudioSettings::aggregateDescription() const
{
    return d->trackName + " ("_L1 + d->language + ") - "_L1 + displayValue(d->codec) + " - @ "_L1 +
           QString::number(d->sampleRate) + "Hz - "_L1 + QString::number(d->bitRate) + " kbps"_L1;
}

void AudioSettings::update(const AudioSettings &other)
{
    AudioSettingsPrivate::update(*this, other);
}

} // namespace vantle
