// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QUuid>

namespace vantle {

/// A random UUID that tells objects of this process apart and is never kept in a file. Made from a seeded
/// generator: QUuid::createUuid() asks the processor for true randomness each time, which took half the
/// time of reading a preset. Callable from any thread.
[[nodiscard]] QUuid newObjectId();

} // namespace vantle
