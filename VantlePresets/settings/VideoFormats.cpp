// SPDX-License-Identifier: MIT
#include "VantlePresets/settings/VideoFormats.h"

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

constexpr EnumerationTable<VideoCodec>::Case kCodecCases[] = {{VideoCodec::h264, "H.264"_L1},
                                                              {VideoCodec::hevc, "HEVC"_L1}};
constexpr EnumerationTable<VideoCodec> kCodecs{"unexpected VideoCodec value", kCodecCases};

constexpr EnumerationTable<VideoResolution>::Case kResolutionCases[] = {
    {VideoResolution::_custom, "custom"_L1},         {VideoResolution::_416_234, "416 x 234"_L1},
    {VideoResolution::_640_360, "640 x 360"_L1},     {VideoResolution::_768_432, "768 x 432"_L1},
    {VideoResolution::_960_540, "960 x 540"_L1},     {VideoResolution::_1280_720, "1280 x 720"_L1},
    {VideoResolution::_1920_1080, "1920 x 1080"_L1}, {VideoResolution::_2560_1440, "2560 x 1440"_L1},
    {VideoResolution::_3840_2160, "3840 x 2160"_L1}};
constexpr EnumerationTable<VideoResolution> kResolutions{"unexpected VideoResolution value",
                                                         kResolutionCases};

} // namespace

const EnumerationTable<VideoCodec> &videoCodecs()
{
    return kCodecs;
}
const EnumerationTable<VideoResolution> &videoResolutions()
{
    return kResolutions;
}

QString displayName(VideoCodec codec)
{
    return kCodecs.text(codec);
}
QString displayValue(VideoResolution resolution)
{
    return kResolutions.text(resolution);
}

QString videoCodecType(VideoCodec codec)
{
    switch (codec) {
    case VideoCodec::h264:
        return QStringLiteral("AVVideoCodecTypeH264");
    case VideoCodec::hevc:
        return QStringLiteral("AVVideoCodecTypeHEVC");
    }
    programmingFault("unexpected VideoCodec value");
}

} // namespace vantle
