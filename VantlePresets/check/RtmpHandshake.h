// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QByteArray>

namespace vantle::check {

/// The caller's side of RTMP's plain handshake: C0 and C1 go out, S0, S1 and S2 come in, C2 goes out. A
/// version byte and two blocks of 1536 bytes for each side (Adobe's RTMP 1.0, section 5.2). Pure: bytes
/// in, bytes out.
class RtmpHandshake
{
public:
    enum class State { waiting, done, otherProtocol };

    RtmpHandshake();

    /// C0 and C1.
    [[nodiscard]] QByteArray beginning() const;

    /// Takes what came from the server. Once it is done, reply() is to be sent.
    State take(QByteArrayView bytes);

    /// C2.
    [[nodiscard]] QByteArray reply() const;
    /// What came so far.
    [[nodiscard]] const QByteArray &received() const { return m_received; }

private:
    QByteArray m_block; ///< C1
    QByteArray m_received;
};

} // namespace vantle::check
