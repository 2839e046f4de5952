// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/settings/AudioSettings.h"

namespace vantle {

namespace document {
class DocumentWriter;
class ObjectReader;
} // namespace document

/// What an AudioSettings holds. The members that files keep have a row in the table of AudioFields.cpp.
class AudioSettingsPrivate
{
public:
    /// Reads one element of "audioSettings"; throws DecodingError. The track has no delegate.
    [[nodiscard]] static std::shared_ptr<AudioSettings> decode(const document::ObjectReader &object);
    /// Writes one element of "audioSettings".
    static void encode(const AudioSettings &settings, document::DocumentWriter &writer);
    /// Assigns the other's fields with the setters.
    static void update(AudioSettings &settings, const AudioSettings &other);

    qint64 bitRate = 128;
    qint64 bitsPerSample = 16;
    qint64 sampleRate = 44100;
    QList<qint64> inputChannels{0, 1};
    AudioCodecID codec = AudioCodecID::aacLC;
    QString language = QStringLiteral("en");
    QString trackName = QStringLiteral("English");
    bool isDefault = false;
    qint64 pid = 256;
    QUuid id;
    std::weak_ptr<AudioSettingsDelegate> delegate;
};

} // namespace vantle
