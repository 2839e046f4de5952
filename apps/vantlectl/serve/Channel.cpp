// SPDX-License-Identifier: MIT
#include "apps/vantlectl/serve/Channel.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <system_error>

#include <poll.h>
#include <unistd.h>

namespace vantle::ctl {
namespace {

constexpr qsizetype kRoom = 1 << 20; // bytes that may wait for a slow peer before nothing is made for it

bool isWritable(int descriptor)
{
    pollfd asked{.fd = descriptor, .events = POLLOUT, .revents = 0};
    return ::poll(&asked, 1, 0) > 0;
}

} // namespace

Channel::Channel(int input, int output)
    : m_input(input), m_output(output), m_readable(input, QSocketNotifier::Read),
      m_writable(output, QSocketNotifier::Write)
{
    m_writable.setEnabled(false);
    connect(&m_readable, &QSocketNotifier::activated, this, &Channel::read);
    connect(&m_writable, &QSocketNotifier::activated, this, &Channel::write);
}

Channel::~Channel()
{
    m_readable.setEnabled(false);
    m_writable.setEnabled(false);
    ::close(m_input);
    ::close(m_output);
}

void Channel::setReading(bool isOn)
{
    m_readable.setEnabled(isOn && !m_isEnded);
}

void Channel::send(QByteArrayView bytes)
{
    if (m_isBroken)
        return;
    if (isEmpty())
        m_progress.start();
    m_pending.remove(0, m_begin);
    m_begin = 0;
    m_pending.append(bytes);
    while (writeSome()) {
    }
    m_writable.setEnabled(!isEmpty() && !m_isBroken);
}

bool Channel::hasRoom() const
{
    return m_pending.size() - m_begin < kRoom;
}

std::chrono::milliseconds Channel::stalledFor() const
{
    return std::chrono::milliseconds(isEmpty() ? 0 : m_progress.elapsed());
}

void Channel::read()
{
    std::array<char, 1 << 16> buffer;
    const ssize_t size = ::read(m_input, buffer.data(), buffer.size());
    if (size > 0) {
        Q_EMIT received(QByteArray(buffer.data(), size));
    } else if (size == 0 || (errno != EAGAIN && errno != EINTR)) {
        m_isEnded = true;
        m_readable.setEnabled(false);
        Q_EMIT inputEnded();
    }
}

void Channel::write()
{
    while (writeSome()) {
    }
    m_writable.setEnabled(!isEmpty() && !m_isBroken);
    if (hasRoom())
        Q_EMIT drained();
}

/// The descriptor's mode is shared with other processes and stays as it is. A pipe that can be written takes
/// PIPE_BUF bytes without blocking, and a socket has more room than that.
bool Channel::writeSome()
{
    if (isEmpty() || !isWritable(m_output))
        return false;
    const auto size = std::min<qsizetype>(m_pending.size() - m_begin, PIPE_BUF);
    const ssize_t written =
        ::write(m_output, m_pending.constData() + m_begin, static_cast<std::size_t>(size));
    if (written < 0) {
        if (errno != EAGAIN && errno != EINTR)
            breakOff(errno);
        return false;
    }
    m_progress.start();
    m_begin += written;
    if (isEmpty()) {
        m_pending.clear();
        m_begin = 0;
    }
    return true;
}

void Channel::breakOff(int error)
{
    m_isBroken = true;
    m_pending.clear();
    m_begin = 0;
    Q_EMIT broken(QString::fromStdString(std::generic_category().message(error)));
}

} // namespace vantle::ctl
