// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/WatchedDirectories.h"

#include <map>
#include <string>

namespace vantle {

/// Every directory in which a name of the path is looked up, links resolved. A parent is one in which a link
/// or the last name stands: that name can be given to something else. An ancestor is any other: what is
/// looked up in it would have to be moved. Ends where the path does.
std::map<std::string, WatchRole> directoriesOnTheWay(const std::string &path);

/// The mount points below a directory, by their paths relative to it, with the numbers of their mounts.
std::map<std::string, long> mountsBelow(const std::string &directory);

} // namespace vantle
