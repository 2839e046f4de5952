// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/model/VantlePreset.h"

#include <QtCore/QByteArray>

#include <filesystem>
#include <memory>
#include <vector>

namespace vantle::ctl {

/// Standard input where a file is read, standard output where one is written.
inline constexpr const char *kStandardStream = "-";

/// The document of a file, or what standard input holds for "-", also when it has been read before. Throws
/// std::system_error.
[[nodiscard]] QByteArray readDocumentArgument(const std::filesystem::path &argument);
/// The preset of a file, or of standard input for "-", which names it "Untitled Preset". Throws DecodingError
/// or std::system_error.
[[nodiscard]] std::shared_ptr<VantlePreset> readPresetArgument(const std::filesystem::path &argument);

/// The file that an argument names; of a folder its visible *.json, no matter what kind of file, sorted by
/// name. Throws std::filesystem::filesystem_error.
[[nodiscard]] std::vector<std::filesystem::path> filesOfArgument(const std::filesystem::path &argument);

} // namespace vantle::ctl
