// SPDX-License-Identifier: MIT
#include "apps/vantlectl/serve/Frames.h"

#include <algorithm>
#include <utility>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype kLargestHeader = 4096;

/// The value of a header line with this name.
std::optional<QByteArrayView> valueOf(QByteArrayView line, QByteArrayView name)
{
    const qsizetype colon = line.indexOf(':');
    if (colon < 0 || line.first(colon).trimmed().compare(name, Qt::CaseInsensitive) != 0)
        return std::nullopt;
    return line.sliced(colon + 1).trimmed();
}

std::optional<quint64> numberOf(QByteArrayView digits)
{
    constexpr qsizetype kMostDigits = 18; // any such number fits
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (digits.isEmpty() || digits.size() > kMostDigits ||
        !std::all_of(digits.begin(), digits.end(), isDigit))
        return std::nullopt;
    return digits.toByteArray().toULongLong();
}

} // namespace

void Frames::append(QByteArrayView bytes)
{
    if (m_isBroken)
        return;
    if (m_begin == m_bytes.size())
        m_bytes.clear(); // and gives back the memory of a large one
    else
        m_bytes.remove(0, m_begin);
    m_begin = 0;
    m_bytes.append(bytes);
    passOver();
}

std::optional<Frame> Frames::next()
{
    passOver();
    if (!m_bodySize && m_skipped == 0) {
        if (auto problem = readHeader())
            return problem;
    }
    if (!m_bodySize || m_bytes.size() - m_begin < *m_bodySize)
        return std::nullopt;
    return Frame{.body = take(*std::exchange(m_bodySize, std::nullopt))};
}

/// Sets the size of the body when all of the header is there; what is no header, or announces too much, is a
/// frame of its own.
std::optional<Frame> Frames::readHeader()
{
    const QByteArrayView seen = QByteArrayView(m_bytes).sliced(m_begin);
    std::optional<quint64> length;
    qsizetype from = 0;
    for (;;) {
        const qsizetype end = seen.first(std::min(seen.size(), kLargestHeader)).indexOf('\n', from);
        if (end < 0) {
            if (seen.size() >= kLargestHeader)
                return broken(u"a header of more than %1 bytes"_s.arg(kLargestHeader));
            return std::nullopt;
        }
        QByteArrayView line = seen.sliced(from, end - from);
        from = end + 1;
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.isEmpty())
            break;
        if (line.indexOf(':') < 0)
            return broken(u"a header line without a colon"_s);
        const auto value = valueOf(line, "Content-Length");
        if (!value)
            continue;
        const auto number = numberOf(*value);
        if (!number || (length && length != number))
            return broken(u"a Content-Length that is no number, or is given twice"_s);
        length = number;
    }
    if (!length)
        return broken(u"a header without Content-Length"_s);
    m_begin += from;
    if (*length > m_largestBody) {
        m_skipped = *length;
        passOver();
        return Frame{.kind = Frame::Kind::tooLarge,
                     .problem =
                         u"a message of %1 bytes; the largest may have %2"_s.arg(*length).arg(m_largestBody),
                     .announced = *length};
    }
    m_bodySize = static_cast<qsizetype>(*length);
    return std::nullopt;
}

Frame Frames::broken(const QString &problem)
{
    m_isBroken = true;
    m_bytes.clear();
    m_begin = 0;
    return {.kind = Frame::Kind::broken, .problem = problem};
}

QByteArray Frames::take(qsizetype size)
{
    const QByteArray taken = m_bytes.sliced(m_begin, size);
    m_begin += size;
    return taken;
}

void Frames::passOver()
{
    const quint64 there = static_cast<quint64>(m_bytes.size() - m_begin);
    const quint64 passed = std::min(there, m_skipped);
    m_begin += static_cast<qsizetype>(passed);
    m_skipped -= passed;
}

QByteArray framed(QByteArrayView body)
{
    return "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body.toByteArray();
}

} // namespace vantle::ctl
