// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/check/StepWork.h"

#include <QtCore/QTimer>

namespace vantle::check {

/// "127.0.0.1 port 1935".
[[nodiscard]] QString shownPlace(const QHostAddress &address, quint16 port);

/// A step that asks one address of the host after the other until one is good. Each may take an equal share
/// of what is left of the limit, so that an address which swallows everything does not hide the next one.
class AddressWork : public StepWork
{
public:
    AddressWork(CheckContext &context, Done done);

    void start() override;
    [[nodiscard]] QString whenLate() const override;

protected:
    /// Asks an address; the one before has been given up.
    virtual void ask(const QHostAddress &address) = 0;
    [[nodiscard]] virtual QString whenSilent() const = 0;

    /// This address is no good; asks the next one, or ends with this reason. May be called inside ask().
    void failedHere(const QString &reason);
    [[nodiscard]] QString here() const;

private:
    void askNext();

    qsizetype m_asked = 0;
    bool m_isGivenUp = false; ///< the one that is asked; the next one is about to be
    QTimer m_share;
    std::chrono::milliseconds m_left;
};

} // namespace vantle::check
