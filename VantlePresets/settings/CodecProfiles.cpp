// SPDX-License-Identifier: MIT
#include "VantlePresets/settings/CodecProfiles.h"

#include <cmath>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

constexpr EnumerationTable<H264ProfileType>::Case kH264TypeCases[] = {
    {H264ProfileType::baseline, "Baseline"_L1},
    {H264ProfileType::main, "Main"_L1},
    {H264ProfileType::high, "High"_L1},
    {H264ProfileType::extended, "Extended"_L1}};
constexpr EnumerationTable<H264ProfileType> kH264Types{"unexpected H264ProfileType value", kH264TypeCases};

constexpr EnumerationTable<H264ProfileLevel>::Case kH264LevelCases[] = {
    {H264ProfileLevel::_3_0, "_3_0"_L1}, {H264ProfileLevel::_3_1, "_3_1"_L1},
    {H264ProfileLevel::_3_2, "_3_2"_L1}, {H264ProfileLevel::_4_0, "_4_0"_L1},
    {H264ProfileLevel::_4_1, "_4_1"_L1}, {H264ProfileLevel::_4_2, "_4_2"_L1},
    {H264ProfileLevel::_5_0, "_5_0"_L1}, {H264ProfileLevel::_5_1, "_5_1"_L1},
    {H264ProfileLevel::_5_2, "_5_2"_L1}, {H264ProfileLevel::_AutoLevel, "_AutoLevel"_L1}};
constexpr EnumerationTable<H264ProfileLevel> kH264Levels{"unexpected H264ProfileLevel value",
                                                         kH264LevelCases};

constexpr EnumerationTable<HEVCProfileType>::Case kHEVCTypeCases[] = {
    {HEVCProfileType::main, "Main"_L1},
    {HEVCProfileType::main10, "Main 10"_L1},
    {HEVCProfileType::main42210, "Main 422-10"_L1},
    {HEVCProfileType::monochrome, "Monochrome"_L1},
    {HEVCProfileType::monochrome10, "Monochrome 10"_L1}};
constexpr EnumerationTable<HEVCProfileType> kHEVCTypes{"unexpected HEVCProfileType value", kHEVCTypeCases};

constexpr EnumerationTable<HEVCProfileLevel>::Case kHEVCLevelCases[] = {
    {HEVCProfileLevel::_AutoLevel, "_AutoLevel"_L1}};
constexpr EnumerationTable<HEVCProfileLevel> kHEVCLevels{"unexpected HEVCProfileLevel value",
                                                         kHEVCLevelCases};

struct LevelLimits
{
    H264ProfileLevel level;
    qint64 maxBitRate;              // MaxBR, kbit/s
    qint64 maxMacroBlocksPerSecond; // MaxMBPS
};

// ITU-T H.264, Table A-1. The automatic level has the limits of the highest.
constexpr std::array<LevelLimits, 10> kLevelLimits{{{H264ProfileLevel::_3_0, 10000, 40500},
                                                    {H264ProfileLevel::_3_1, 14000, 108000},
                                                    {H264ProfileLevel::_3_2, 20000, 216000},
                                                    {H264ProfileLevel::_4_0, 20000, 245760},
                                                    {H264ProfileLevel::_4_1, 50000, 245760},
                                                    {H264ProfileLevel::_4_2, 50000, 522240},
                                                    {H264ProfileLevel::_5_0, 135000, 589824},
                                                    {H264ProfileLevel::_5_1, 240000, 983040},
                                                    {H264ProfileLevel::_5_2, 240000, 2073600},
                                                    {H264ProfileLevel::_AutoLevel, 240000, 2073600}}};

const LevelLimits &limitsOf(H264ProfileLevel level)
{
    for (const LevelLimits &limits : kLevelLimits) {
        if (limits.level == level)
            return limits;
    }
    programmingFault("unexpected H264ProfileLevel value");
}

constexpr qint64 kPixelsPerMacroBlock = 256;

struct MacroBlocks
{
    qint64 perFrame;
    qint64 perSecond;
};

/// Nothing when the product overflows, or the rate is not finite or too large to count.
std::optional<MacroBlocks> macroBlocks(qint64 width, qint64 height, double frameRate)
{
    qint64 pixels = 0;
    if (__builtin_mul_overflow(width, height, &pixels))
        return std::nullopt;
    const double pixelsPerSecond =
        std::ceil(static_cast<double>(width) * static_cast<double>(height) * frameRate);
    const double perSecond = std::trunc(pixelsPerSecond * (1.0 / kPixelsPerMacroBlock));
    constexpr double kLimit = 0x1p63;
    if (!std::isfinite(perSecond) || perSecond < -kLimit || perSecond >= kLimit)
        return std::nullopt;
    return MacroBlocks{pixels / kPixelsPerMacroBlock, static_cast<qint64>(perSecond)};
}

} // namespace

const EnumerationTable<H264ProfileType> &h264ProfileTypes()
{
    return kH264Types;
}
const EnumerationTable<H264ProfileLevel> &h264ProfileLevels()
{
    return kH264Levels;
}
const EnumerationTable<HEVCProfileType> &hevcProfileTypes()
{
    return kHEVCTypes;
}
const EnumerationTable<HEVCProfileLevel> &hevcProfileLevels()
{
    return kHEVCLevels;
}

QString H264Profile::displayName() const
{
    return "H264_"_L1 + kH264Types.text(profile) + kH264Levels.text(level);
}

qint64 H264Profile::maxBitRate() const
{
    return limitsOf(level).maxBitRate;
}

qint64 H264Profile::maxMacroBlocksPerFrame() const
{
    return limitsOf(level).maxMacroBlocksPerSecond;
}

bool H264Profile::isCompatible(qint64 width, qint64 height, double frameRate) const
{
    qint64 pixels = 0;
    if (!__builtin_mul_overflow(width, height, &pixels) &&
        pixels / kPixelsPerMacroBlock > maxMacroBlocksPerFrame())
        return false; // whatever the rate
    const auto count = macroBlocks(width, height, frameRate);
    if (!count)
        programmingFault("frame size or rate too large to count its macroblocks");
    return maxMacroBlocksPerFrame() >= count->perFrame && maxMacroBlocksPerSecond() >= count->perSecond;
}

bool H264Profile::isComputable(qint64 width, qint64 height, double frameRate)
{
    return macroBlocks(width, height, frameRate).has_value();
}

QString H264Profile::videoToolboxProfile() const
{
    const H264ProfileLevel named =
        profile == H264ProfileType::extended && level != H264ProfileLevel::_AutoLevel ? H264ProfileLevel::_5_0
                                                                                      : level;
    return "kVTProfileLevel_H264_"_L1 + kH264Types.text(profile) + kH264Levels.text(named);
}

QString HEVCProfile::displayName() const
{
    return "HEVC_"_L1 + kHEVCTypes.text(profile) + kHEVCLevels.text(level);
}

QString HEVCProfile::videoToolboxProfile() const
{
    QString type = kHEVCTypes.text(profile);
    type.remove(u' ').remove(u'-');
    return "kVTProfileLevel_HEVC_"_L1 + type + "_AutoLevel"_L1;
}

QList<H264Profile> offeredH264Profiles()
{
    static const QList<H264Profile> offered = [] {
        QList<H264Profile> list;
        for (const H264ProfileType type : kH264Types.values()) {
            if (type == H264ProfileType::extended) {
                list.append({type, H264ProfileLevel::_5_0});
                list.append({type, H264ProfileLevel::_AutoLevel});
                continue;
            }
            for (const H264ProfileLevel level : kH264Levels.values())
                list.append({type, level});
        }
        return list;
    }();
    return offered;
}

QList<HEVCProfile> offeredHEVCProfiles()
{
    static const QList<HEVCProfile> offered = [] {
        QList<HEVCProfile> list;
        for (const HEVCProfileType type : kHEVCTypes.values())
            list.append({type, HEVCProfileLevel::_AutoLevel});
        return list;
    }();
    return offered;
}

} // namespace vantle
