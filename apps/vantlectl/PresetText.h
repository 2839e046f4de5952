// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/model/VantlePreset.h"

#include <exception>
#include <filesystem>

namespace vantle::ctl {

/// The path as it can be shown: bytes that are not UTF-8 become U+FFFD, control characters escapes.
[[nodiscard]] QString shown(const std::filesystem::path &path);

/// "5 renditions, 1 track".
[[nodiscard]] QString countsOf(const VantlePreset &preset);

/// Why a file could not be used. The place is "" unless a document's key or line is at fault.
struct Failure
{
    explicit Failure(const std::exception &error);
    [[nodiscard]] QString message() const;

    QString place;
    QString description;
};

} // namespace vantle::ctl
