// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/obs/Connection.h"

namespace vantle::ctl::obs {

/// What goes out of OBS.
struct StreamStatus
{
    bool isActive = false;
    bool isReconnecting = false;
    qint64 bytes = 0;
    qint64 duration = 0; ///< in milliseconds
    qint64 droppedFrames = 0;
    qint64 frames = 0;
};

[[nodiscard]] StreamStatus streamStatus(Connection &connection);

/// Starts the stream and waits until OBS says so and bytes go out; else stops it and throws Error with what
/// was seen. When `isInterrupted` becomes true it is stopped as well. An OBS that is still connecting then
/// can't be stopped, and is waited for up to the limit once more. OBS answers "done" to a start before
/// anything has happened.
void startStream(Connection &connection, const bool &isInterrupted,
                 std::chrono::milliseconds limit = std::chrono::seconds(12));

/// Stops the stream, or the attempt to reconnect, and waits for its end. False when nothing was on air.
/// Throws Error.
bool stopStream(Connection &connection);

/// In kbit/s, over a second.
[[nodiscard]] qint64 measuredBitRate(Connection &connection);

} // namespace vantle::ctl::obs
