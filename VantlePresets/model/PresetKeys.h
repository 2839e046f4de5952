// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace vantle {

/// Whether any class reads a key of this name, in whatever object, as the tables of fields say; the values of
/// all others are not kept while a preset document is parsed. Callable from any thread.
[[nodiscard]] bool isPresetKey(std::string_view key);

} // namespace vantle
