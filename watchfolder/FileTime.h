// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace vantle {

using FileTime = std::chrono::sys_time<std::chrono::nanoseconds>;

} // namespace vantle
