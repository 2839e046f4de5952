// SPDX-License-Identifier: MIT
#include "VantlePresets/model/StreamingType.h"

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

constexpr EnumerationTable<StreamingType>::Case kTypeCases[] = {
    {StreamingType::hls, "HLS"_L1},           {StreamingType::youTube, "YouTube"_L1},
    {StreamingType::rtmp, "RTMP"_L1},         {StreamingType::wowza, "Wowza"_L1},
    {StreamingType::facebook, "Facebook"_L1}, {StreamingType::srt, "SRT"_L1}};
constexpr EnumerationTable<StreamingType> kTypes{"unexpected StreamingType value", kTypeCases};

} // namespace

const EnumerationTable<StreamingType> &streamingTypes()
{
    return kTypes;
}
QString displayName(StreamingType type)
{
    return kTypes.text(type);
}

} // namespace vantle
