// SPDX-License-Identifier: MIT
#include "VantlePresets/encoder/MasterPlaylist.h"

#include "VantlePresets/document/StagedFile.h"
#include "VantlePresets/encoder/MasterText.h"

namespace vantle {

bool completeMasterPlaylist(const VantlePreset &preset, const EncoderPlan &plan)
{
    if (plan.masterPlaylist().isEmpty())
        return false;
    const std::filesystem::path path = fileSystemPath(plan.masterPlaylist());
    QByteArray written;
    try {
        written = readFile(path);
    } catch (const std::system_error &error) {
        if (error.code() == std::errc::no_such_file_or_directory)
            return false;
        throw;
    }
    const QByteArray complete = encoder::completedMaster(preset, written);
    if (complete == written)
        return false;
    StagedFile(path, complete).commit();
    return true;
}

} // namespace vantle
