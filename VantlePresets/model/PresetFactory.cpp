// SPDX-License-Identifier: MIT
#include "VantlePresets/model/PresetFactory.h"

#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/model/ConnectionPrivate.h"
#include "VantlePresets/model/HLSVantlePreset.h"
#include "VantlePresets/model/PresetKeys.h"

#include <typeinfo>

namespace vantle {

std::shared_ptr<VantlePreset> makePreset(StreamingType type, const QString &name)
{
    switch (type) {
    case StreamingType::hls:
        return HLSVantlePreset::withName(name);
    case StreamingType::youTube:
    case StreamingType::rtmp:
    case StreamingType::wowza:
    case StreamingType::facebook:
        return RTMPVantlePreset::withType(type, name, false, QString());
    case StreamingType::srt:
        return SRTVantlePreset::withType(type, name);
    }
    programmingFault("unexpected StreamingType value");
}

const QList<Field> &presetFields(StreamingType type)
{
    switch (type) {
    case StreamingType::hls:
        return VantlePresetPrivate::baseFields();
    case StreamingType::youTube:
    case StreamingType::rtmp:
    case StreamingType::wowza:
    case StreamingType::facebook:
        return RTMPPrivate::classFields();
    case StreamingType::srt:
        return SRTPrivate::classFields();
    }
    programmingFault("unexpected StreamingType value");
}

std::shared_ptr<VantlePreset> decodePreset(QByteArrayView document)
{
    const document::Document json(document, isPresetKey);
    const document::ObjectReader root = json.root();
    // The kind alone decides the class. The class reads the shared keys first, in the same order as a
    // reading of these keys alone would, so that the first error of a document is the same.
    switch (streamingTypes().fromText(root.text("type")).value_or(StreamingType::hls)) {
    case StreamingType::hls:
        return VantlePresetPrivate::decodeHLS(root);
    case StreamingType::youTube:
    case StreamingType::rtmp:
    case StreamingType::wowza:
    case StreamingType::facebook:
        return RTMPPrivate::decode(root);
    case StreamingType::srt:
        return SRTPrivate::decode(root);
    }
    programmingFault("unexpected StreamingType value");
}

std::shared_ptr<VantlePreset> readPresetFile(const std::filesystem::path &path)
{
    auto preset = decodePreset(readFile(path));
    preset->setName(presetNameFromPath(QString::fromStdString(path.string())));
    return preset;
}

bool updatePreset(VantlePreset &preset, const VantlePreset &source)
{
    if (typeid(preset) != typeid(source))
        return false;
    if (auto *const rtmp = dynamic_cast<RTMPVantlePreset *>(&preset))
        rtmp->update(static_cast<const RTMPVantlePreset &>(source));
    else if (auto *const srt = dynamic_cast<SRTVantlePreset *>(&preset))
        srt->update(static_cast<const SRTVantlePreset &>(source));
    else
        preset.update(source);
    return true;
}

} // namespace vantle
