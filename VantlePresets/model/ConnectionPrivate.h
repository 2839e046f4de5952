// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SRTVantlePreset.h"
#include "VantlePresets/model/VantlePresetPrivate.h"

namespace vantle {

/// What all presets that send to a server hold.
class ConnectionPrivate : public VantlePresetPrivate
{
public:
    bool isBackup = false;
    QString streamKey;
    QString streamingURL;
    qint64 portNumber = 0;
    bool authenticate = false;
    QString application;
};

/// What an RTMPVantlePreset holds.
class RTMPPrivate final : public ConnectionPrivate
{
public:
    static constexpr qint64 kDefaultPort = 1935;

    RTMPPrivate() { portNumber = kDefaultPort; }

    void encode(document::DocumentWriter &writer) const override;
    [[nodiscard]] const QList<Field> &fields() const override { return classFields(); }
    [[nodiscard]] static const QList<Field> &classFields();

    /// Reads a whole document of one of the four kinds; throws DecodingError.
    [[nodiscard]] static std::shared_ptr<RTMPVantlePreset> decode(const document::ObjectReader &root);

    /// Takes all fields and the lists of a preset decoded from the same file, without announcing them.
    void takeDecoded(const RTMPPrivate &decoded);

    RTMPVantlePreset::StreamingProtocol streamingProtocol = RTMPVantlePreset::StreamingProtocol::rtmp;
    QString authenticationLogin;
    QString authenticationPassword;
};

/// What an SRTVantlePreset holds.
class SRTPrivate final : public ConnectionPrivate
{
public:
    void encode(document::DocumentWriter &writer) const override;
    [[nodiscard]] const QList<Field> &fields() const override { return classFields(); }
    [[nodiscard]] static const QList<Field> &classFields();

    /// Reads a whole SRT document; throws DecodingError.
    [[nodiscard]] static std::shared_ptr<SRTVantlePreset> decode(const document::ObjectReader &root);
};

/// The rows that all classes share. "type" and the lists are read by the base, before the class's own.
template <class Record, class Data>
struct SharedRows : FieldRows<Record, Data>
{
    using Rows = FieldRows<Record, Data>;

    static constexpr auto kType = Rows::template field<&Data::type, &Record::setType>("type", "Kind").fixed();
    static constexpr auto kName =
        Rows::template field<&Data::name, &Record::setName>("name", "Name").keptBy({}).fixed();
    static constexpr auto kVideo =
        Rows::template field<&Data::videoSettings, &Record::setVideoSettings>("videoSettings", "Renditions")
            .means("The video renditions, in order.")
            .fixed();
    static constexpr auto kAudio =
        Rows::template field<&Data::audioSettings, &Record::setAudioSettings>("audioSettings", "Tracks")
            .means("The audio tracks, in order. Of several default tracks the last one counts.")
            .fixed();
};

} // namespace vantle
