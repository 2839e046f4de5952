// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/Export.h"

#include <string>

namespace vantle {

enum class OpenFile {
    Complete, ///< nobody writes it: linked or moved in, or not a regular file, or gone
    Empty,    ///< a writer has it, nothing is in it yet
    Unknown,  ///< nothing is in it, and whether a writer has it can't be known: it is another user's
    Written,  ///< a writer may have it, and there is content
};

enum class Writer {
    None,
    Some,    ///< somebody has the file open for writing
    Unknown, ///< the file is another user's, can't be opened, or its file system can't tell
};

/// Whether anybody has a regular file open for writing.
VANTLE_WATCHFOLDER_EXPORT Writer probeWriter(const std::string &path);

/// Whether a file whose creation was seen, but not its writer's closing it, can be reported.
OpenFile probeOpenFile(const std::string &path);

} // namespace vantle
