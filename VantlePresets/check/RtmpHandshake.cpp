// SPDX-License-Identifier: MIT
#include "VantlePresets/check/RtmpHandshake.h"

#include "VantlePresets/check/Spoken.h"
#include "VantlePresets/check/StepWork.h"

#include <QtCore/QRandomGenerator>

namespace vantle::check {
namespace {

using namespace Qt::StringLiterals;

constexpr char kVersion = 3;
constexpr qsizetype kBlock = 1536;
/// A time and, for the plain handshake, four zeros; the rest is random.
constexpr qsizetype kHead = 8;

class RtmpStep : public StepWork
{
public:
    using StepWork::StepWork;

    void start() override
    {
        QSslSocket &socket = *context().socket;
        connect(&socket, &QIODevice::readyRead, this, [this] { take(); });
        connect(&socket, &QAbstractSocket::errorOccurred, this, [this] { fail(); });
        socket.write(m_handshake.beginning());
        if (socket.bytesAvailable() > 0)
            take();
    }

    [[nodiscard]] QString whenLate() const override
    {
        if (m_handshake.received().isEmpty())
            return u"the server does not answer the handshake"_s;
        return u"the server's handshake ends after %1 bytes"_s.arg(m_handshake.received().size());
    }

private:
    void take()
    {
        QSslSocket &socket = *context().socket;
        switch (m_handshake.take(socket.readAll())) {
        case RtmpHandshake::State::waiting:
            return;
        case RtmpHandshake::State::otherProtocol:
            failed(speaksOther(m_handshake.received(), "RTMP"_L1));
            return;
        case RtmpHandshake::State::done:
            socket.write(m_handshake.reply());
            socket.flush();
            good(u"the server speaks RTMP; application and stream key were not tried"_s);
        }
    }

    void fail()
    {
        const QSslSocket &socket = *context().socket;
        failed(
            socket.error() == QAbstractSocket::RemoteHostClosedError
                ? u"the server closed the connection instead of answering: it may want TLS, or no RTMP at all"_s
                : socket.errorString());
    }

    RtmpHandshake m_handshake;
};

} // namespace

const StepKind kRtmpHandshake{"RTMP handshake"_L1, [](CheckContext &context, StepWork::Done done) {
                                  return std::unique_ptr<StepWork>(new RtmpStep(context, std::move(done)));
                              }};

RtmpHandshake::RtmpHandshake() : m_block(kBlock, '\0')
{
    for (qsizetype i = kHead; i < kBlock; ++i)
        m_block[i] = static_cast<char>(QRandomGenerator::global()->bounded(256));
}

QByteArray RtmpHandshake::beginning() const
{
    return kVersion + m_block;
}

RtmpHandshake::State RtmpHandshake::take(QByteArrayView bytes)
{
    constexpr qsizetype kWhole = 1 + 2 * kBlock;
    m_received.append(bytes.first(qMin(bytes.size(), kWhole - m_received.size())));
    if (!m_received.isEmpty() && m_received[0] != kVersion)
        return State::otherProtocol;
    // What S2 repeats is not compared: servers with a signed handshake answer otherwise.
    return m_received.size() < kWhole ? State::waiting : State::done;
}

QByteArray RtmpHandshake::reply() const
{
    return m_received.sliced(1, kBlock);
}

} // namespace vantle::check
