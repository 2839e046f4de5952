// SPDX-License-Identifier: MIT
#include "VantlePresets/check/OptionsRequest.h"

#include "VantlePresets/check/Spoken.h"
#include "VantlePresets/check/StepWork.h"

#include <QtCore/QRegularExpression>

#include <array>

namespace vantle::check {
namespace {

using namespace Qt::StringLiterals;

struct Status
{
    int first;
    int last;
    bool isGood;
    QLatin1StringView meaning;
};

/// The first row that holds the status counts.
constexpr std::array<Status, 8> kStatuses{
    {{200, 299, true, ""_L1},
     {300, 399, false, "the server sends callers elsewhere, and encoders stay"_L1},
     {401, 401, false, "the server asks for a login, the address has none"_L1},
     {403, 403, false, "the server refuses this address"_L1},
     // What an upload makes is not there before it, and few servers know OPTIONS.
     {404, 405, true, "the server answers; uploads were not tried"_L1},
     {400, 499, false, "the server refuses the request"_L1},
     {501, 501, true, "the server answers; uploads were not tried"_L1},
     {500, 599, false, "the server is in trouble"_L1}}};

constexpr QLatin1StringView kHttp = "HTTP"_L1;
constexpr QLatin1StringView kRtsp = "RTSP"_L1;

QByteArray requestFor(const CheckTarget &target, QLatin1StringView protocol)
{
    const bool isV6 = target.host.contains(u':');
    const QString host =
        (isV6 ? u'[' + target.host + u']' : target.host) + u':' + QString::number(target.port);
    if (protocol == kRtsp)
        return "OPTIONS rtsp://%1%2 RTSP/1.0\r\nCSeq: 1\r\nUser-Agent: vantle\r\n\r\n"_L1
            .arg(host, target.path)
            .toUtf8();
    return "OPTIONS %1 HTTP/1.1\r\nHost: %2\r\nUser-Agent: vantle\r\nConnection: close\r\n\r\n"_L1
        .arg(target.path, host)
        .toUtf8();
}

class OptionsStep : public StepWork
{
public:
    OptionsStep(CheckContext &context, Done done, QLatin1StringView protocol)
        : StepWork(context, std::move(done)), m_protocol(protocol)
    {
    }

    void start() override
    {
        QSslSocket &socket = *context().socket;
        connect(&socket, &QIODevice::readyRead, this, [this] { take(); });
        connect(&socket, &QAbstractSocket::errorOccurred, this, [this] { fail(); });
        socket.write(requestFor(target(), m_protocol));
        if (socket.bytesAvailable() > 0)
            take();
    }

    [[nodiscard]] QString whenLate() const override
    {
        return m_answer.isEmpty() ? u"the server does not answer the request"_s
                                  : u"the server's answer does not end"_s;
    }

private:
    void take()
    {
        constexpr qsizetype kLongest = 4096;
        m_answer += context().socket->read(kLongest);
        const qsizetype end = m_answer.indexOf('\n');
        const QByteArray begin = QString(m_protocol + u'/').toLatin1();
        const bool isOther = !m_answer.startsWith(begin.first(qMin(begin.size(), m_answer.size())));
        if (end < 0 && !isOther && m_answer.size() < kLongest)
            return;
        const auto answer = judgeOptionsAnswer(
            QByteArrayView(m_answer).first(end < 0 ? m_answer.size() : end), m_protocol, target().hasLogin);
        if (answer.isGood)
            good(answer.text);
        else
            failed(answer.text);
    }

    void fail()
    {
        const QSslSocket &socket = *context().socket;
        failed(socket.error() == QAbstractSocket::RemoteHostClosedError
                   ? u"the server closed the connection instead of answering"_s
                   : socket.errorString());
    }

    QLatin1StringView m_protocol;
    QByteArray m_answer;
};

} // namespace

OptionsAnswer judgeOptionsAnswer(QByteArrayView firstLine, QLatin1StringView protocol, bool hasLogin)
{
    static const QRegularExpression form(u"\\A([A-Z]+)/\\d(?:\\.\\d)? (\\d{3})(?: ([^\\r]{0,80}))?"_s);
    const auto match = form.match(QString::fromUtf8(firstLine));
    if (!match.hasMatch() || match.captured(1) != protocol)
        return {false, speaksOther(firstLine, protocol)};
    const int status = match.captured(2).toInt();
    const QString said = QString(match.captured(2) + u' ' + match.captured(3)).trimmed();
    if (status == 401 && hasLogin)
        return {true, said + ": the server asks for a login, which a check does not send"_L1};
    for (const Status &row : kStatuses) {
        if (status >= row.first && status <= row.last)
            return {row.isGood, row.meaning.isEmpty() ? said : said + ": "_L1 + row.meaning};
    }
    return {false, said + ": no final answer"_L1};
}

const StepKind kHttpOptions{"HTTP"_L1, [](CheckContext &context, StepWork::Done done) {
                                return std::unique_ptr<StepWork>(
                                    new OptionsStep(context, std::move(done), kHttp));
                            }};

const StepKind kRtspOptions{"RTSP"_L1, [](CheckContext &context, StepWork::Done done) {
                                return std::unique_ptr<StepWork>(
                                    new OptionsStep(context, std::move(done), kRtsp));
                            }};

} // namespace vantle::check
