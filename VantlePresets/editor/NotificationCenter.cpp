// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/NotificationCenter.h"

#include "VantlePresets/editor/MainThread.h"

namespace vantle {

NotificationCenter &NotificationCenter::defaultCenter()
{
    requireMainThread();
    static NotificationCenter center;
    return center;
}

void NotificationCenter::post(const QString &name)
{
    requireMainThread();
    Q_EMIT posted(name);
}

} // namespace vantle
