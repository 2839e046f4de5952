// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

#include <chrono>

namespace vantle::test {

/// Runs the event loop until the condition holds. False when it does not within the time, which is only there
/// so that a failing test ends.
template <class Condition>
bool waitFor(const Condition &condition, std::chrono::seconds atMost = std::chrono::seconds(60))
{
    const QDeadlineTimer deadline(atMost);
    QTimer look;
    look.start(std::chrono::milliseconds(2));
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

} // namespace vantle::test
