// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>
#include <optional>

namespace vantle {

/// How long a rescan has to wait for an overflowed queue to be quiet, or for descriptors to be had: longer
/// each time that it comes again soon.
class RescanBackoff
{
public:
    using Clock = std::chrono::steady_clock;

    std::chrono::milliseconds nextDelay(Clock::time_point now)
    {
        const bool isQuiet = !m_last || now - *m_last > 2 * kLongest;
        m_delay = isQuiet ? kShortest : std::min(2 * m_delay, kLongest);
        m_last = now;
        return m_delay;
    }

private:
    static constexpr std::chrono::milliseconds kShortest{250};
    static constexpr std::chrono::milliseconds kLongest{5000};

    std::chrono::milliseconds m_delay = kShortest;
    std::optional<Clock::time_point> m_last;
};

} // namespace vantle
