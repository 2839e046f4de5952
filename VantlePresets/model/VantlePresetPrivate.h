// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/document/RecordTable.h"
#include "VantlePresets/model/PresetFacts.h"
#include "VantlePresets/model/VantlePreset.h"

namespace vantle {

class HLSVantlePreset;

/// What a preset of any kind holds, and how its class reads and writes documents. The members that files keep
/// have a row in the table of their class: VantlePreset.cpp, RTMPFields.cpp, SRTVantlePreset.cpp.
class VantlePresetPrivate
{
public:
    virtual ~VantlePresetPrivate() = default;

    [[nodiscard]] static VantlePresetPrivate &of(VantlePreset &preset) { return *preset.d; }
    [[nodiscard]] static const VantlePresetPrivate &of(const VantlePreset &preset) { return *preset.d; }

    /// Writes the members of the object's own document. Throws EncodingError.
    virtual void encode(document::DocumentWriter &writer) const;
    /// The fields of the class, in the order in which they are written.
    [[nodiscard]] virtual const QList<Field> &fields() const;
    /// Those of the base and of HLS presets.
    [[nodiscard]] static const QList<Field> &baseFields();

    /// Fills a new preset with its kind, its name and one default rendition and track.
    static void makeDefaults(VantlePreset &preset, StreamingType type, const QString &name);

    /// Reads the shared keys: the first step of every class. Throws DecodingError.
    static void decodeBase(VantlePreset &preset, const document::ObjectReader &root);

    /// Reads a whole HLS document; throws DecodingError.
    [[nodiscard]] static std::shared_ptr<HLSVantlePreset> decodeHLS(const document::ObjectReader &root);

    /// The last step of reading in every derived class, whose lists are decoded twice: afterwards the listed
    /// tracks have no delegate, and the default one is a track of its own, with a delegate, that equals the
    /// one in the list.
    static void separateDefaultTrack(VantlePreset &preset);

    /// Fills the shared keys and the name from a file; false, silently, when that fails.
    static bool readBaseFromFile(VantlePreset &preset, const QString &path);

    /// Takes the kind and the lists of a preset decoded from the same file, without announcing them.
    void takeDecodedBase(const VantlePresetPrivate &decoded);

    StreamingType type = StreamingType::hls;
    QString name = QStringLiteral("Untitled Preset");
    VideoSettingsList videoSettings;
    AudioSettingsList audioSettings;
    std::shared_ptr<AudioSettings> defaultAudioSettings;
    QUuid uuid;
};

} // namespace vantle
