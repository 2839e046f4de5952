// SPDX-License-Identifier: MIT
#pragma once

namespace vantle::document {

enum class Format {
    compact, ///< no white space
    pretty,  ///< line breaks and an indentation of four blanks
};

} // namespace vantle::document
