// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>

namespace vantle {

/// Keeps the numbers of standard streams that the process was started without from going to the next file
/// that it opens, into which everything printed would be written then. Using such a stream fails as it would
/// have.
inline void reserveStandardStreams()
{
    for (int stream = 0; stream <= 2; ++stream) {
        if (::fcntl(stream, F_GETFD) < 0)
            static_cast<void>(::open("/dev/null", stream == 0 ? O_WRONLY : O_RDONLY));
    }
}

} // namespace vantle
