// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/LocalKeyMonitor.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QKeyEvent>

namespace vantle {

LocalKeyMonitor::LocalKeyMonitor(Handler handler) : m_handler(std::move(handler))
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool LocalKeyMonitor::eventFilter(QObject *, QEvent *event)
{
    return event->type() == QEvent::KeyPress && m_handler(*static_cast<const QKeyEvent *>(event));
}

} // namespace vantle
