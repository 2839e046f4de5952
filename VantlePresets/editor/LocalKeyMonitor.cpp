// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/LocalKeyMonitor.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QKeyEvent>

namespace vantle {

LocalKeyMonitor::LocalKeyMonitor(Handler handler) : m_handler(std::move(handler))
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool LocalKeyMonitor::isRepetition(const QKeyEvent &press) const
{
    constexpr quint64 kFasterThanFingers = 15; // milliseconds
    return press.isAutoRepeat() ||
           (m_releasedKey == press.key() && m_releasedAt > 0 && press.timestamp() >= m_releasedAt &&
            press.timestamp() - m_releasedAt < kFasterThanFingers);
}

bool LocalKeyMonitor::eventFilter(QObject *, QEvent *event)
{
    if (event->type() == QEvent::KeyRelease) {
        const auto *release = static_cast<const QKeyEvent *>(event);
        m_releasedKey = release->key();
        m_releasedAt = release->timestamp();
    }
    return event->type() == QEvent::KeyPress && m_handler(*static_cast<const QKeyEvent *>(event));
}

} // namespace vantle
