// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/model/VantlePreset.h"

#include <filesystem>
#include <memory>

namespace vantle::ctl {

/// Standard input where a file is read, standard output where one is written.
inline constexpr const char *kStandardStream = "-";

/// The preset of a file, or of standard input for "-", which names it "Untitled Preset". Throws DecodingError
/// or std::system_error.
[[nodiscard]] std::shared_ptr<VantlePreset> readPresetArgument(const std::filesystem::path &argument);

} // namespace vantle::ctl
