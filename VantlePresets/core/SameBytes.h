// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace vantle {

/// Equality for searches in short lists, whose texts often have one length and one beginning: a glance at the
/// last byte saves most calls of memcmp().
[[nodiscard]] constexpr bool areSameBytes(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && (a.empty() || (a.back() == b.back() && a == b));
}

} // namespace vantle
