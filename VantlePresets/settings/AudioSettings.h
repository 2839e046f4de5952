// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/core/EnumerationTable.h"
#include "VantlePresets/core/Field.h"
#include "VantlePresets/core/ObservableRecord.h"
#include "VantlePresets/document/DocumentFormat.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QUuid>

#include <memory>

namespace vantle {

/// "AAC LC": shown to users and kept in preset files.
[[nodiscard]] VANTLE_PRESETS_EXPORT const EnumerationTable<AudioCodecID> &audioCodecs();
/// The display string; a value outside the enumeration stops the process.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString displayValue(AudioCodecID codec);
/// The Core Audio format identifier, for AAC LC 'aac ' (1633772320).
[[nodiscard]] VANTLE_PRESETS_EXPORT quint32 audioCodecFormatID(AudioCodecID codec);

class AudioSettings;
class AudioSettingsPrivate;

/// Is told when a track's default flag changes. Held weakly by the track.
class VANTLE_PRESETS_EXPORT AudioSettingsDelegate
{
public:
    virtual ~AudioSettingsDelegate();

    /// Called inside the assignment, on the assigning thread, after the flag was stored and announced.
    virtual void audioSettingsDidChangeDefault(const std::shared_ptr<AudioSettings> &track,
                                               bool isDefault) = 0;

protected:
    AudioSettingsDelegate() = default;
    /// @cond
    AudioSettingsDelegate(const AudioSettingsDelegate &) = default;
    AudioSettingsDelegate &operator=(const AudioSettingsDelegate &) = default;
    /// @endcond
};

/// The encoding choices of one audio track of a preset.
///
/// A reference object: presets, forms and the host share it. Main thread only, see ObservableRecord.
/// Values are stored as they come, unchecked.
class VANTLE_PRESETS_EXPORT AudioSettings : public ObservableRecord,
                                            public std::enable_shared_from_this<AudioSettings>
{
    Q_OBJECT
    Q_PROPERTY(qint64 bitRate READ bitRate WRITE setBitRate NOTIFY bitRateChanged)
    Q_PROPERTY(qint64 bitsPerSample READ bitsPerSample WRITE setBitsPerSample NOTIFY bitsPerSampleChanged)
    Q_PROPERTY(qint64 sampleRate READ sampleRate WRITE setSampleRate NOTIFY sampleRateChanged)
    Q_PROPERTY(
        QList<qint64> inputChannels READ inputChannels WRITE setInputChannels NOTIFY inputChannelsChanged)
    Q_PROPERTY(vantle::AudioCodecID codec READ codec WRITE setCodec NOTIFY codecChanged)
    Q_PROPERTY(QString language READ language WRITE setLanguage NOTIFY languageChanged)
    Q_PROPERTY(QString trackName READ trackName WRITE setTrackName NOTIFY trackNameChanged)
    Q_PROPERTY(bool isDefault READ isDefault WRITE setIsDefault NOTIFY isDefaultChanged)
    Q_PROPERTY(qint64 pid READ pid WRITE setPid NOTIFY pidChanged)
    Q_PROPERTY(QUuid id READ id CONSTANT)
    Q_PROPERTY(quint32 audioCodecFormatID READ audioCodecFormatID STORED false)
    Q_PROPERTY(QString variantName READ variantName STORED false)

    struct Key
    {
        explicit Key() = default;
    };

public:
    /// For the static functions that make objects.
    explicit AudioSettings(Key);
    ~AudioSettings() override;

    /// New settings: AAC LC, 128 kbit/s, 44100 Hz, 16 bits, the source's first two channels, "English".
    [[nodiscard]] static std::shared_ptr<AudioSettings> create();

    /// Reads the JSON text of one element of "audioSettings"; throws DecodingError. The track has no
    /// delegate. Callable from any thread.
    [[nodiscard]] static std::shared_ptr<AudioSettings> decoded(QByteArrayView object);

    /// A track of its own with these values and no delegate.
    [[nodiscard]] std::shared_ptr<AudioSettings> copy() const;

    /// One element of "audioSettings" as UTF-8 text.
    [[nodiscard]] QByteArray encoded(document::Format format) const;

    /// What there is to know of the fields that files keep, in the order in which they are written. Callable
    /// from any thread.
    [[nodiscard]] static const QList<Field> &fields();

    /// In kbit/s.
    [[nodiscard]] qint64 bitRate() const;
    /// Of the samples before encoding.
    [[nodiscard]] qint64 bitsPerSample() const;
    /// In hertz.
    [[nodiscard]] qint64 sampleRate() const;
    /// Source channels by index from 0, in the order of the track's own channels.
    [[nodiscard]] const QList<qint64> &inputChannels() const;
    /// The only one so far is AAC LC.
    [[nodiscard]] AudioCodecID codec() const;
    /// A language code such as "en".
    [[nodiscard]] const QString &language() const;
    /// What players show.
    [[nodiscard]] const QString &trackName() const;
    /// Whether players choose this track by themselves.
    [[nodiscard]] bool isDefault() const;
    /// The MPEG-TS packet identifier of the stream.
    [[nodiscard]] qint64 pid() const;
    /// Identifies this object in memory; never in a file.
    [[nodiscard]] const QUuid &id() const;

    /// @{
    /// Stores the value and announces it, see ObservableRecord.
    void setBitRate(qint64 bitRate);
    void setBitsPerSample(qint64 bitsPerSample);
    void setSampleRate(qint64 sampleRate);
    void setInputChannels(const QList<qint64> &channels);
    void setCodec(AudioCodecID codec);
    void setLanguage(const QString &language);
    void setTrackName(const QString &trackName);
    /// Tells the delegate when the flag really changed.
    void setIsDefault(bool isDefault);
    void setPid(qint64 pid);
    /// @}

    /// The delegate, or null when there is none or it is gone.
    [[nodiscard]] std::shared_ptr<AudioSettingsDelegate> delegate() const;
    /// The delegate is held weakly.
    void setDelegate(const std::weak_ptr<AudioSettingsDelegate> &delegate);

    /// That of the codec.
    [[nodiscard]] quint32 audioCodecFormatID() const;
    /// "English_128".
    [[nodiscard]] QString variantName() const;
    /// "Audio Track English".
    [[nodiscard]] QString displayName() const;
    /// "English (en) - AAC LC - @ 44100Hz - 128 kbps".
    [[nodiscard]] QString aggregateDescription() const;

    /// Assigns the other's fields one by one; identifier and delegate stay.
    void update(const AudioSettings &other);

    /// The same identifier, whatever the values.
    friend bool operator==(const AudioSettings &a, const AudioSettings &b) { return a.id() == b.id(); }

Q_SIGNALS:
    /// @{
    /// Comes after the value was stored, equal values included.
    void bitRateChanged(qint64 bitRate);
    void bitsPerSampleChanged(qint64 bitsPerSample);
    void sampleRateChanged(qint64 sampleRate);
    void inputChannelsChanged(const QList<qint64> &channels);
    void codecChanged(vantle::AudioCodecID codec);
    void languageChanged(const QString &language);
    void trackNameChanged(const QString &trackName);
    void isDefaultChanged(bool isDefault);
    void pidChanged(qint64 pid);
    /// @}

private:
    friend class AudioSettingsPrivate;

    const std::unique_ptr<AudioSettingsPrivate> d;
};

} // namespace vantle
