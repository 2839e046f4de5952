// SPDX-License-Identifier: MIT
#include "benchmarks/presets/CountedMemory.h"

#include <malloc.h>

namespace vantle::bench {

std::size_t heapInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

} // namespace vantle::bench
