// SPDX-License-Identifier: MIT
#pragma once

namespace vantle {

/// How urgent the work of a queue is; the numbers are those of the system's quality-of-service classes.
enum class QualityOfService {
    UserInteractive = 33,
    UserInitiated = 25,
    Default = 21,
    Utility = 17,
    Background = 9,
};

} // namespace vantle
