// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <functional>
#include <memory>
#include <system_error>

#include <sys/signalfd.h>
#include <unistd.h>

namespace vantle {

/// Ends the event loop, or does what it is told, on each SIGINT and SIGTERM. Has to be made, or block()
/// called, before any other thread, so that all block them. Throws std::system_error when the signals can't
/// be taken, and leaves them as they were.
class StopOnSignal
{
public:
    explicit StopOnSignal(std::function<void()> stop = [] { QCoreApplication::quit(); })
    {
        const sigset_t signals = takenSignals();
        m_descriptor = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
        if (m_descriptor < 0)
            throw std::system_error(errno, std::generic_category(), "can't wait for signals");
        block();
        m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                         [this, stop = std::move(stop)] {
                             signalfd_siginfo taken;
                             if (::read(m_descriptor, &taken, sizeof taken) == sizeof taken)
                                 stop();
                         });
    }
    ~StopOnSignal()
    {
        m_notifier.reset();
        ::close(m_descriptor);
    }
    StopOnSignal(const StopOnSignal &) = delete;
    StopOnSignal &operator=(const StopOnSignal &) = delete;

    /// Keeps the signals for an object that is made later: a graphical application starts threads when it is
    /// made, and the object needs the application.
    static void block()
    {
        const sigset_t signals = takenSignals();
        sigprocmask(SIG_BLOCK, &signals, nullptr);
    }

private:
    static sigset_t takenSignals()
    {
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGINT);
        sigaddset(&signals, SIGTERM);
        return signals;
    }

    int m_descriptor = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace vantle
