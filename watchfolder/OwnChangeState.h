// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/OwnChange.h"
#include "watchfolder/WatchSession.h"

namespace vantle {

struct OwnChange::State
{
    std::shared_ptr<WatchSession> session; ///< the one that the change began in
    std::string path;                      ///< relative to the folder
    OwnOutcome outcome;
};

} // namespace vantle
