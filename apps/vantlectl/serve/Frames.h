// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

namespace vantle::ctl {

/// One piece of what a peer sent.
struct Frame
{
    enum class Kind {
        message,  ///< a whole body
        tooLarge, ///< a body over the limit was announced; its bytes are passed over
        broken,   ///< the header is none: where the next frame begins can't be told any more
    };

    Kind kind = Kind::message;
    QByteArray body = {};  ///< of a message
    QString problem = {};  ///< of the others, in one line
    quint64 announced = 0; ///< bytes of a body that is too large
};

/// Cuts a stream of bytes into frames as language servers have them: header lines that end in CR LF (or LF
/// alone), one of them "Content-Length: N", an empty line, N bytes. Names of headers are read without regard
/// to case, other headers passed over. Pure; keeps at most one header or one body of the largest size, and
/// what was appended behind it. Nothing comes after a broken frame.
class Frames
{
public:
    explicit Frames(quint64 largestBody) : m_largestBody(largestBody) {}

    void append(QByteArrayView bytes);
    /// Nothing until more is appended.
    [[nodiscard]] std::optional<Frame> next();
    /// Whether the stream would end in the midst of a frame.
    [[nodiscard]] bool isInFrame() const { return m_bodySize || m_skipped > 0 || m_begin < m_bytes.size(); }

private:
    [[nodiscard]] std::optional<Frame> readHeader();
    [[nodiscard]] Frame broken(const QString &problem);
    [[nodiscard]] QByteArray take(qsizetype size);
    void passOver();

    const quint64 m_largestBody;
    QByteArray m_bytes;
    qsizetype m_begin = 0;               // of what has not been taken yet
    std::optional<qsizetype> m_bodySize; // once the header has been read
    quint64 m_skipped = 0;               // bytes of a body that is too large, still to come
    bool m_isBroken = false;
};

/// The body behind its header.
[[nodiscard]] QByteArray framed(QByteArrayView body);

} // namespace vantle::ctl
