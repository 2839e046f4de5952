// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/store/PresetsManager.h"

#include <filesystem>
#include <vector>

namespace vantle {

/// A file from anywhere that is to become a preset of the store.
struct PresetImport
{
    std::filesystem::path path;
    std::shared_ptr<VantlePreset> preset; ///< named after the file; null when it was refused
    QString refusal;                      ///< in one line without the path; "" unless it was refused
    std::filesystem::path like = path;    ///< the file whose permissions the preset's file gets
    bool isOverBrokenFile = false;        ///< a file of its name that holds no preset is replaced
};

/// Reads the files. On any thread, since a disk may be slow; the presets belong to the application's thread
/// afterwards.
[[nodiscard]] VANTLE_PRESETS_EXPORT QList<PresetImport>
readPresetsToImport(const std::vector<std::filesystem::path> &paths);

/// What becomes of a file that has the name of a listed preset.
enum class NameClash {
    refuse,
    replace, ///< the preset becomes what the file says, with its own identifier, and its secrets where the
             ///< file leaves them out; it is the import's preset then. A file of the name that holds
             ///< no preset is replaced, too
};

/// Lists and saves what was read, and refuses what has the name of an earlier file. An identifier that
/// another preset has is replaced by a new one: that file is a copy. Main thread only. The selection stays.
VANTLE_PRESETS_EXPORT void addImportedPresets(PresetsManager &manager, QList<PresetImport> &imports,
                                              NameClash clash = NameClash::refuse);

} // namespace vantle
