// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/FileState.h"

#include <string>
#include <string_view>

namespace vantle {

/// The state of what is at a path relative to a folder. The folder may be reached through links, but below
/// something that is not a directory, a link to one included, everything is missing.
std::optional<FileState> readFileStateBelow(const std::string &folder, std::string_view path,
                                            std::error_code &error);

} // namespace vantle
