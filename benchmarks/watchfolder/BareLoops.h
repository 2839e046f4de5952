// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/FileSystemEventStream.h"

#include <cstddef>
#include <functional>
#include <string>

namespace vantle::benchmark {

/// Reads an event queue of one folder on a thread and throws the records away: the least that any watcher has
/// to do. Returns when the last record names the given file.
void bareReadLoop(WatchBackend backend, const std::string &folder, const std::string &lastName,
                  const std::function<void()> &ready);

/// readdir and one statx per entry; returns the number of entries.
std::size_t bareListing(const std::string &folder);

} // namespace vantle::benchmark
