// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/document/FileAccess.h"

namespace vantle::ctl {

/// Refuses a file name at which something other than a regular file stands: replacing /dev/stdout or a FIFO
/// would take it away from others. Throws std::system_error.
inline void requireFileOrNothing(const std::filesystem::path &target)
{
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(target, ignored);
    if (std::filesystem::is_directory(status))
        throw std::system_error(std::make_error_code(std::errc::is_a_directory));
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        throw std::system_error(make_error_code(FileFault::notRegular));
}

} // namespace vantle::ctl
