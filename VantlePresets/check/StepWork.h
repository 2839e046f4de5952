// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/check/CheckTarget.h"

#include <QtCore/QObject>
#include <QtNetwork/QHostAddress>
#include <QtNetwork/QSslSocket>

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

namespace vantle::check {

/// What the steps of one check hand on. The socket belongs to it.
struct CheckContext
{
    CheckTarget target;
    QString authorityFile;
    std::chrono::milliseconds limit;
    QList<QHostAddress> addresses;      ///< from the look-up on
    std::unique_ptr<QSslSocket> socket; ///< connected from the TCP step on
};

/// One step at work, on the event loop of its thread. It calls `done` once, at any time from start() on, and
/// may be destroyed at any time, though not inside that call.
class StepWork : public QObject
{
public:
    using Done = std::function<void(bool isGood, const QString &text)>;

    StepWork(CheckContext &context, Done done) : m_context(context), m_done(std::move(done)) {}

    virtual void start() = 0;
    /// What it means that the limit has passed.
    [[nodiscard]] virtual QString whenLate() const = 0;

protected:
    [[nodiscard]] CheckContext &context() { return m_context; }
    [[nodiscard]] const CheckContext &context() const { return m_context; }
    [[nodiscard]] const CheckTarget &target() const { return m_context.target; }

    void good(const QString &text) { end(true, text); }
    void failed(const QString &text) { end(false, text); }

private:
    void end(bool isGood, const QString &text)
    {
        if (m_context.socket)
            m_context.socket->disconnect(this);
        if (const Done done = std::exchange(m_done, {}))
            done(isGood, text);
    }

    CheckContext &m_context;
    Done m_done;
};

/// A kind of step: its name, and what makes one.
struct StepKind
{
    QLatin1StringView name;
    std::unique_ptr<StepWork> (*make)(CheckContext &context, StepWork::Done done);
};

// Each is data: see ConnectionCheck for what they ask.
extern const StepKind kNameLookUp;
extern const StepKind kTcp;
extern const StepKind kTls;
extern const StepKind kRtmpHandshake;
extern const StepKind kRtspOptions;
extern const StepKind kHttpOptions;
extern const StepKind kSrtCall;
extern const StepKind kSrtPort;
extern const StepKind kFolder;

} // namespace vantle::check
