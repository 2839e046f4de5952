// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/WatchedDirectories.h"

#include <map>
#include <string>

namespace vantle {

/// The directories through which a path leads, those of the links on the way included, by their paths without
/// links: a parent where a link or the last name is looked up, which can be given to something else, an
/// ancestor where it is another directory, which would have to be moved. Ends where the path does.
std::map<std::string, WatchRole> directoriesOnTheWay(const std::string &path);

/// The mount points below a directory, by their paths relative to it, with the numbers of their mounts.
std::map<std::string, long> mountsBelow(const std::string &directory);

} // namespace vantle
