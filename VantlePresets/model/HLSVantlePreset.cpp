// SPDX-License-Identifier: MIT
#include "VantlePresets/model/HLSVantlePreset.h"

#include "VantlePresets/model/PresetKeys.h"
#include "VantlePresets/model/VantlePresetPrivate.h"

namespace vantle {

HLSVantlePreset::HLSVantlePreset(Key key) : VantlePreset(key) {}
HLSVantlePreset::~HLSVantlePreset() = default;

std::shared_ptr<HLSVantlePreset> HLSVantlePreset::withName(const QString &name)
{
    auto preset = std::make_shared<HLSVantlePreset>(Key{});
    VantlePresetPrivate::makeDefaults(*preset, StreamingType::hls, name);
    return preset;
}

std::shared_ptr<HLSVantlePreset> HLSVantlePreset::withFileAtPath(const QString &path)
{
    auto preset = std::make_shared<HLSVantlePreset>(Key{});
    return VantlePresetPrivate::readBaseFromFile(*preset, path) ? preset : nullptr;
}

std::shared_ptr<HLSVantlePreset> HLSVantlePreset::decoded(QByteArrayView document)
{
    const document::Document json(document, isPresetKey);
    return VantlePresetPrivate::decodeHLS(json.root());
}

std::shared_ptr<HLSVantlePreset> VantlePresetPrivate::decodeHLS(const document::ObjectReader &root)
{
    auto preset = std::make_shared<HLSVantlePreset>(HLSVantlePreset::Key{});
    decodeBase(*preset, root);
    separateDefaultTrack(*preset);
    return preset;
}

} // namespace vantle
