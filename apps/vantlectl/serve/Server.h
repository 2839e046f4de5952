// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/serve/Channel.h"
#include "apps/vantlectl/serve/Checks.h"
#include "apps/vantlectl/serve/Frames.h"
#include "apps/vantlectl/serve/Notifications.h"
#include "apps/vantlectl/serve/Request.h"
#include "apps/vantlectl/serve/ServedStore.h"

#include <QtCore/QQueue>

namespace vantle::ctl {

/// One client's session with the store: requests are carried out one after another in their order, each
/// answered once; only checks of servers go on beside others. What the client does not read is bounded: no
/// request is carried out while it leaves a MiB of answers unread, and none is read while many wait. Main
/// thread only.
class Server : public QObject
{
    Q_OBJECT

public:
    /// Takes over the descriptors.
    Server(const QString &dataDirectory, int input, int output);

    /// Takes no more requests: those that are not begun are refused, what was saved is on disk at finished().
    void stop();

Q_SIGNALS:
    /// Everything is done and told; with why it ended early, or "".
    void finished(const QString &complaint);

private:
    /// How the session goes towards its end.
    enum class Phase {
        serving,
        inputEnded, ///< what has been read is still carried out
        stopping,   ///< what has been read is refused
        finished,
    };
    struct Job
    {
        Request request;
        QByteArray answer; ///< known already, when nothing is to be done
        qsizetype size;    ///< of what was read
    };

    void receive(const QByteArray &bytes);
    void readFrames();
    void take(const Frame &frame);
    void queue(Job job);
    void cancel(const QJsonValue &id);
    void turn();
    [[nodiscard]] bool canTurn();
    [[nodiscard]] std::optional<QByteArray> answerOf(const Request &request);
    [[nodiscard]] std::optional<QByteArray> resultOf(const Request &request);
    [[nodiscard]] QByteArray initialize(Params &params);
    void endInput();
    void endOutput(const QString &reason);
    void goOn();
    void finishIfDone();

    ServedStore m_store;
    Channel m_channel;
    Frames m_frames;
    Notifications m_notifications;
    Checks m_checks;
    QQueue<Job> m_jobs;
    qsizetype m_jobsSize = 0;
    QTimer m_turn;
    QTimer m_grace;    // of checks that go on when the input has ended
    QTimer m_patience; // with a client that does not read the last answers
    Phase m_phase = Phase::serving;
    bool m_isBusy = false; // the event loop runs inside a request
    QString m_complaint;
};

} // namespace vantle::ctl
