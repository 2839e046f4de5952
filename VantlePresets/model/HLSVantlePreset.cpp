// SPDX-License-Identifier: MIT
#include "VantlePresets/model/HLSVantlePreset.h"

namespace vantle {

std::shared_ptr<HLSVantlePreset> HLSVantlePreset::withName(const QString &name)
{
    auto preset = std::make_shared<HLSVantlePreset>(Key{});
    preset->makeDefaults(StreamingType::hls, name);
    return preset;
}

std::shared_ptr<HLSVantlePreset> HLSVantlePreset::withFileAtPath(const QString &path)
{
    auto preset = std::make_shared<HLSVantlePreset>(Key{});
    return preset->readBaseFromFile(path) ? preset : nullptr;
}

std::shared_ptr<HLSVantlePreset> HLSVantlePreset::decode(const document::ObjectReader &root)
{
    auto preset = std::make_shared<HLSVantlePreset>(Key{});
    preset->decodeBase(root);
    preset->separateDefaultTrack();
    return preset;
}

} // namespace vantle
