// SPDX-License-Identifier: MIT
#include "VantlePresets/core/ProgrammingFault.h"

#include <cstdio>
#include <cstdlib>

namespace vantle {

void programmingFault(const char *what, const char *file, int line) noexcept
{
    std::fprintf(stderr, "Programming fault: %s (%s:%d)\n", what, file, line);
    std::abort();
}

} // namespace vantle
