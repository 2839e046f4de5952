// SPDX-License-Identifier: MIT
#include "VantlePresets/check/ConnectionCheck.h"

#include "VantlePresets/check/StepWork.h"
#include "VantlePresets/core/Log.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QPointer>
#include <QtCore/QTimer>

namespace vantle {

using namespace check;
using namespace Qt::StringLiterals;

namespace {

constexpr EnumerationTable<CheckOutcome>::Case kOutcomeCases[] = {{CheckOutcome::good, "ok"_L1},
                                                                  {CheckOutcome::failed, "failed"_L1}};
constexpr EnumerationTable<CheckOutcome> kOutcomes{"unexpected CheckOutcome value", kOutcomeCases};

QList<const StepKind *> stepsFor(const CheckTarget &target)
{
    const auto over = [&](const StepKind &protocol) {
        QList<const StepKind *> steps{&kNameLookUp, &kTcp};
        if (target.isEncrypted)
            steps.append(&kTls);
        steps.append(&protocol);
        return steps;
    };
    switch (target.peer) {
    case Peer::nobody:
        return {};
    case Peer::folder:
        return {&kFolder};
    case Peer::rtmp:
        return over(kRtmpHandshake);
    case Peer::rtsp:
        return over(kRtspOptions);
    case Peer::http:
        return over(kHttpOptions);
    case Peer::srtListener:
        return {&kNameLookUp, &kSrtCall};
    case Peer::srtCaller:
        return {&kSrtPort};
    }
    return {};
}

} // namespace

const EnumerationTable<CheckOutcome> &checkOutcomes()
{
    return kOutcomes;
}

class ConnectionCheck::Private
{
public:
    Private(ConnectionCheck *check, const VantlePreset &preset, const CheckOptions &options)
        : q(check), m_context{targetOf(preset, options.output), options.authorityFile, options.limit, {}, {}},
          m_kinds(stepsFor(m_context.target)), m_limit(check)
    {
        m_limit.setSingleShot(true);
        m_limit.setTimerType(Qt::PreciseTimer); // others come up to a twentieth too soon
        connect(&m_limit, &QTimer::timeout, q, [this] { end(false, m_work->whenLate()); });
    }

    void start()
    {
        if (std::exchange(m_isStarted, true))
            return;
        QMetaObject::invokeMethod(
            q, [this] { begin(); }, Qt::QueuedConnection);
    }

    void cancel()
    {
        m_isStarted = true;
        m_isCancelled = true;
        m_limit.stop();
        m_work.reset();
        m_context.socket.reset();
    }

    [[nodiscard]] const QList<CheckStep> &steps() const { return m_steps; }

private:
    void begin()
    {
        if (m_isCancelled)
            return;
        m_clock.start();
        if (m_kinds.isEmpty()) {
            end(false, m_context.target.problem);
            return;
        }
        m_limit.start(m_context.limit);
        m_work = m_kinds[m_steps.size()]->make(
            m_context, [this](bool isGood, const QString &text) { end(isGood, text); });
        m_work->start();
    }

    /// The step's work may be on the stack: what follows waits for the event loop.
    void end(bool isGood, const QString &text)
    {
        m_limit.stop();
        const auto time = std::chrono::milliseconds(m_clock.elapsed());
        m_steps.append({m_kinds.isEmpty() ? u"preset"_s : QString(m_kinds[m_steps.size()]->name),
                        isGood ? CheckOutcome::good : CheckOutcome::failed, time, escapedControls(text)});
        QMetaObject::invokeMethod(
            q, [this] { goOn(); }, Qt::QueuedConnection);
    }

    void goOn()
    {
        if (m_isCancelled)
            return;
        m_work.reset();
        const bool isGood = m_steps.last().outcome == CheckOutcome::good;
        const bool isLast = !isGood || m_steps.size() == m_kinds.size();
        if (isLast)
            m_context.socket.reset();
        const CheckStep step = m_steps.last();
        const QPointer<ConnectionCheck> alive(q);
        Q_EMIT q->stepFinished(step);
        if (!alive || m_isCancelled)
            return;
        if (isLast)
            Q_EMIT q->finished(isGood);
        else
            begin();
    }

    ConnectionCheck *q;
    CheckContext m_context;
    QList<const StepKind *> m_kinds;
    QTimer m_limit; ///< a child, so that it goes to another thread with the check
    QElapsedTimer m_clock;
    std::unique_ptr<StepWork> m_work;
    QList<CheckStep> m_steps;
    bool m_isStarted = false;
    bool m_isCancelled = false;
};

ConnectionCheck::ConnectionCheck(const VantlePreset &preset, const CheckOptions &options, QObject *parent)
    : QObject(parent), d(std::make_unique<Private>(this, preset, options))
{
}

ConnectionCheck::~ConnectionCheck() = default;

void ConnectionCheck::start()
{
    d->start();
}

void ConnectionCheck::cancel()
{
    d->cancel();
}

const QList<CheckStep> &ConnectionCheck::steps() const
{
    return d->steps();
}

} // namespace vantle
