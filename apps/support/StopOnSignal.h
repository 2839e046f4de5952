// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>

#include <csignal>
#include <memory>

#include <sys/signalfd.h>

namespace vantle {

/// Ends the event loop on SIGINT and SIGTERM. Has to be made before any other thread, so that all block them.
class StopOnSignal
{
public:
    StopOnSignal()
    {
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGINT);
        sigaddset(&signals, SIGTERM);
        sigprocmask(SIG_BLOCK, &signals, nullptr);
        const int descriptor = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
        m_notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                         [] { QCoreApplication::quit(); });
    }

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace vantle
