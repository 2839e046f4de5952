// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>

#include <chrono>

namespace vantle::ctl {

/// Two descriptors of a peer, of any type, read and written on the event loop without ever blocking it.
/// Owns them.
class Channel : public QObject
{
    Q_OBJECT

public:
    Channel(int input, int output);
    ~Channel() override;

    /// Whether input is taken; what is not stays with the peer.
    void setReading(bool isOn);
    /// Queues and writes as much as the peer takes. After broken() it is thrown away.
    void send(QByteArrayView bytes);

    /// Whether the peer keeps up, so that more may be made for it.
    [[nodiscard]] bool hasRoom() const;
    [[nodiscard]] bool isEmpty() const { return m_begin == m_pending.size(); }
    /// How long the peer has not taken any of what is queued.
    [[nodiscard]] std::chrono::milliseconds stalledFor() const;

Q_SIGNALS:
    void received(const QByteArray &bytes);
    /// Once: nothing more will be received.
    void inputEnded();
    /// There is room again, or nothing left to write.
    void drained();
    /// Once: nobody reads the output any more.
    void broken(const QString &reason);

private:
    void read();
    void write();
    [[nodiscard]] bool writeSome();
    void breakOff(int error);

    const int m_input;
    const int m_output;
    QSocketNotifier m_readable;
    QSocketNotifier m_writable;
    QByteArray m_pending;
    qsizetype m_begin = 0;
    QElapsedTimer m_progress;
    bool m_isEnded = false;
    bool m_isBroken = false;
};

} // namespace vantle::ctl
