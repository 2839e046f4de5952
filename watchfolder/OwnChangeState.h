// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/OwnChange.h"
#include "watchfolder/WatchFolderCore.h"

namespace vantle {

struct OwnChange::State
{
    std::shared_ptr<WatchFolderCore> core;
    std::string path; ///< relative to the folder
    OwnOutcome outcome;
};

} // namespace vantle
