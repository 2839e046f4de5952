// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/core/ProgrammingFault.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

namespace vantle {

/// Every entry of the editor begins with this: a call from another thread stops the process.
inline void requireMainThread(const char *file = __builtin_FILE(), int line = __builtin_LINE())
{
    const QCoreApplication *application = QCoreApplication::instance();
    if (!application || QThread::currentThread() != application->thread())
        programmingFault("VantlePresets/VantleView: unexpected executor, expected the main thread", file,
                         line);
}

} // namespace vantle
