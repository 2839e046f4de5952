// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace vantle::bench {

/// The bytes that the process's heap has handed out, with the allocator's own overhead.
[[nodiscard]] std::size_t heapInUse();

} // namespace vantle::bench
