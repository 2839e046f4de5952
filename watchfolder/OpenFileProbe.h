// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace vantle {

enum class OpenFile {
    Complete, ///< nobody writes it: linked or moved in, or not a regular file, or gone
    Empty,    ///< a writer has it, nothing is in it yet
    Unknown,  ///< nothing is in it, and whether a writer has it can't be known: it is another user's
    Written,  ///< a writer may have it, and there is content
};

/// Whether a file whose creation was seen, but not its writer's closing it, can be reported.
OpenFile probeOpenFile(const std::string &path);

} // namespace vantle
