// SPDX-License-Identifier: MIT
#include "apps/vantlectl/InputFile.h"

#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/model/PresetFactory.h"

#include <unistd.h>

namespace vantle::ctl {

QByteArray readDocumentArgument(const std::filesystem::path &argument)
{
    if (argument != kStandardStream)
        return readFile(argument);
    static const QByteArray input = readFully(STDIN_FILENO); // it can be read once only
    return input;
}

std::shared_ptr<VantlePreset> readPresetArgument(const std::filesystem::path &argument)
{
    return argument == kStandardStream ? decodePreset(readDocumentArgument(argument))
                                       : readPresetFile(argument);
}

} // namespace vantle::ctl
