// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/StoreSession.h"

#include "VantlePresets/model/Assignment.h"

#include <filesystem>

namespace vantle::ctl {

inline constexpr const char *kPresetArgumentHelp =
    "A preset file, - for standard input, or the name of a preset in the store";

/// The preset of standard input for "-", or of a file when the argument holds a "/", or ends in ".json" and
/// is a regular file while no --data-dir is given; else the store's preset of that name. Throws Refusal.
[[nodiscard]] std::shared_ptr<VantlePreset> namedPreset(const std::string &argument,
                                                        const StoreOptions &options);

/// The same with assignments, whose texts have been read, carried out: they hold for this command only.
[[nodiscard]] std::shared_ptr<VantlePreset> assignedPreset(const std::string &argument,
                                                           const StoreOptions &options,
                                                           const QList<Assignment> &assignments);

/// Where that preset's file is.
[[nodiscard]] std::filesystem::path fileOfNamedPreset(const std::string &argument,
                                                      const StoreOptions &options);
/// Where the file of the store's preset of that name is.
[[nodiscard]] std::filesystem::path fileInStore(const std::string &name, const StoreOptions &options);

} // namespace vantle::ctl
