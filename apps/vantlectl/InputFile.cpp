// SPDX-License-Identifier: MIT
#include "apps/vantlectl/InputFile.h"

#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/model/PresetFactory.h"

#include <unistd.h>

namespace vantle::ctl {

std::shared_ptr<VantlePreset> readPresetArgument(const std::filesystem::path &argument)
{
    return argument == kStandardStream ? decodePreset(readFully(STDIN_FILENO)) : readPresetFile(argument);
}

} // namespace vantle::ctl
