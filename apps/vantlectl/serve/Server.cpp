// SPDX-License-Identifier: MIT
#include "apps/vantlectl/serve/Server.h"

#include "apps/vantlectl/serve/Methods.h"

#include <QtCore/QScopedValueRollback>

#include <algorithm>
#include <array>
#include <chrono>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

constexpr int kProtocol = 1;
constexpr quint64 kLargestRequest = 16 << 20; // as the largest preset file
constexpr qsizetype kMostJobs = 256;          // that wait, of as many bytes as the largest request together
constexpr std::chrono::seconds kGrace{10};    // a check may have an hour for each step
constexpr std::chrono::seconds kPatience{5};
constexpr std::chrono::milliseconds kPatienceStep{100};

constexpr auto kCheck = "check"; // the one that is answered later
constexpr std::array kNotifications{"loaded", "changed", "failed", "recovered"};

} // namespace

Server::Server(const QString &dataDirectory, int input, int output)
    : m_store(dataDirectory), m_channel(input, output), m_frames(kLargestRequest),
      m_notifications(
          m_store.manager(), [this] { return m_channel.hasRoom(); },
          [this](const char *method, const ObjectText &params) {
              m_channel.send(framed(notificationOf(method, params)));
          }),
      m_checks([this](const QByteArray &body) {
          m_channel.send(framed(body));
          goOn();
      })
{
    m_store.edited = [this](const auto &preset) { m_notifications.noteUpdated(preset); };
    m_turn.setSingleShot(true);
    m_turn.setInterval(0);
    connect(&m_turn, &QTimer::timeout, this, &Server::turn);
    connect(&m_channel, &Channel::received, this, &Server::receive);
    connect(&m_channel, &Channel::inputEnded, this, &Server::endInput);
    connect(&m_channel, &Channel::broken, this, &Server::endOutput);
    connect(&m_channel, &Channel::drained, this, [this] {
        m_notifications.flush();
        goOn();
    });
    connect(&m_store.manager(), &PresetsManager::didLoad, this, &Server::goOn);
    connect(&m_store.manager(), &PresetsManager::startFailed, this, [this](const QString &reason) {
        m_channel.send(framed(
            notificationOf("failed", ObjectText().text("operation", u"start"_s).text("reason", reason))));
        goOn();
    });
    m_grace.setSingleShot(true);
    m_grace.setInterval(kGrace);
    connect(&m_grace, &QTimer::timeout, this,
            [this] { m_checks.endAll(ServeError(ErrorCode::ending, u"the input has ended"_s)); });
    connect(&m_patience, &QTimer::timeout, this, &Server::finishIfDone);
}

void Server::receive(const QByteArray &bytes)
{
    m_frames.append(bytes);
    readFrames();
}

void Server::readFrames()
{
    while (m_phase == Phase::serving && m_jobs.size() < kMostJobs &&
           m_jobsSize < static_cast<qsizetype>(kLargestRequest)) {
        const auto frame = m_frames.next();
        if (!frame) {
            m_channel.setReading(true);
            goOn();
            return;
        }
        take(*frame);
    }
    m_channel.setReading(false);
    goOn();
}

void Server::take(const Frame &frame)
{
    if (frame.kind != Frame::Kind::message) {
        const bool isBroken = frame.kind == Frame::Kind::broken;
        const ServeError error(isBroken ? ErrorCode::parseError : ErrorCode::invalidRequest, frame.problem,
                               isBroken ? ObjectText()
                                        : ObjectText().number("limit", static_cast<qint64>(kLargestRequest)));
        queue({{}, refusalOf({}, error), 0});
        if (isBroken) {
            m_phase = Phase::inputEnded; // what came before it is carried out
            m_complaint = "the input is broken: "_L1 + frame.problem;
        }
        return;
    }
    QByteArray answer;
    const auto request = Request::parse(frame.body, answer);
    if (!request)
        queue({{}, answer, frame.body.size()});
    else if (!request->id.isEmpty())
        queue({*request, {}, frame.body.size()});
    else if (request->method == "$/cancelRequest"_L1)
        cancel(request->params.value("id"_L1));
}

void Server::queue(Job job)
{
    m_jobsSize += job.size;
    m_jobs.enqueue(std::move(job));
}

/// A request that has begun, and is no check, is finished and answered as if nothing had been said.
void Server::cancel(const QJsonValue &id)
{
    const QByteArray text = Request::idText(id);
    const ServeError cancelled(ErrorCode::requestCancelled, u"cancelled"_s);
    m_checks.end(text, cancelled);
    for (Job &job : m_jobs) {
        if (!text.isEmpty() && job.answer.isEmpty() && job.request.id == text)
            job.answer = refusalOf(text, cancelled);
    }
}

/// Sets what is due in motion: the next request, or the end.
void Server::goOn()
{
    if (m_phase != Phase::finished && !m_isBusy && !m_turn.isActive() &&
        (!m_jobs.isEmpty() || m_phase != Phase::serving))
        m_turn.start();
}

bool Server::canTurn()
{
    if (m_isBusy || m_jobs.isEmpty() || !m_channel.hasRoom())
        return false;
    // What can be told without the store does not wait for it.
    const Job &job = m_jobs.head();
    PresetsManager &manager = m_store.manager();
    return m_phase == Phase::stopping || manager.isLoaded() || manager.startError() ||
           !job.answer.isEmpty() || job.request.method == "initialize"_L1 ||
           job.request.method == "shutdown"_L1;
}

void Server::turn()
{
    if (canTurn()) {
        const Job job = m_jobs.dequeue();
        m_jobsSize -= job.size;
        if (const auto answer = job.answer.isEmpty() ? answerOf(job.request) : job.answer)
            m_channel.send(framed(*answer));
        m_notifications.flush();
        readFrames();
    }
    finishIfDone();
}

/// Nothing for what is answered later.
std::optional<QByteArray> Server::answerOf(const Request &request)
{
    const QScopedValueRollback<bool> busy(m_isBusy, true);
    try {
        const auto result = resultOf(request);
        return result ? std::optional(answerTo(request.id, *result)) : std::nullopt;
    } catch (const ServeError &error) {
        return refusalOf(request.id, error);
    } catch (const std::exception &error) {
        return refusalOf(request.id, ServeError(ErrorCode::internalError, QString::fromUtf8(error.what())));
    }
}

std::optional<QByteArray> Server::resultOf(const Request &request)
{
    if (m_phase == Phase::stopping)
        throw ServeError(ErrorCode::ending, u"the session is ending"_s);
    Params params(request.params);
    if (request.method == "initialize"_L1)
        return initialize(params);
    if (request.method == "shutdown"_L1) {
        params.requireNoOthers();
        m_store.settle();
        m_notifications.flushNow();
        m_phase = Phase::stopping;
        return "null";
    }
    const auto methods = storeMethods();
    const auto method = std::find_if(methods.begin(), methods.end(), [&](const Method &candidate) {
        return request.method == QLatin1StringView(candidate.name);
    });
    const bool isCheck = request.method == QLatin1StringView(kCheck);
    if (method == methods.end() && !isCheck)
        throw ServeError(ErrorCode::methodNotFound, "there is no method \""_L1 + request.method + u'"');
    if (const auto error = m_store.manager().startError(); error && !m_store.manager().isLoaded())
        throw ServeError(ErrorCode::unavailable, *error);
    if (isCheck) {
        m_checks.begin(m_store, request.id, params);
        return std::nullopt;
    }
    return method->run(m_store, params);
}

QByteArray Server::initialize(Params &params)
{
    const auto protocol = params.optionalInteger("protocol");
    static_cast<void>(params.optionalText("client"));
    params.requireNoOthers();
    if (protocol && *protocol != kProtocol)
        throw ServeError(ErrorCode::invalidParams, u"the protocol of this server is %1"_s.arg(kProtocol),
                         ObjectText().text("parameter", u"protocol"_s).number("supported", kProtocol));
    QStringList methods{u"initialize"_s};
    for (const Method &method : storeMethods())
        methods.append(QString::fromLatin1(method.name));
    methods.append({QString::fromLatin1(kCheck), u"shutdown"_s});
    QStringList notifications;
    for (const char *name : kNotifications)
        notifications.append(QString::fromLatin1(name));
    ObjectText capabilities;
    capabilities.texts("methods", methods)
        .texts("notifications", notifications)
        .number("largestRequest", static_cast<qint64>(kLargestRequest));
    return ObjectText()
        .number("protocol", kProtocol)
        .text("server", u"vantlectl"_s)
        .text("version", QStringLiteral(VANTLE_VERSION))
        .text("dataDirectory", m_store.dataDirectory())
        .flag("isLoaded", m_store.manager().isLoaded())
        .raw("capabilities", capabilities.json())
        .json();
}

void Server::endInput()
{
    if (m_phase == Phase::serving && m_frames.isInFrame())
        m_complaint = u"the input ends in the midst of a message"_s;
    if (m_phase == Phase::serving)
        m_phase = Phase::inputEnded;
    goOn();
}

/// What the client has asked for before it went away is carried out, up to the end of its input.
void Server::endOutput(const QString &reason)
{
    if (m_complaint.isEmpty())
        m_complaint = "can't write the output: "_L1 + reason;
    goOn();
}

void Server::stop()
{
    m_channel.setReading(false);
    if (m_phase != Phase::finished)
        m_phase = Phase::stopping;
    goOn();
}

void Server::finishIfDone()
{
    if (m_phase == Phase::serving || m_phase == Phase::finished || m_isBusy)
        return;
    if (!m_jobs.isEmpty() && canTurn())
        return goOn();
    if (m_phase == Phase::stopping)
        m_checks.endAll(ServeError(ErrorCode::ending, u"the session is ending"_s));
    if (!m_checks.isEmpty()) {
        if (!m_grace.isActive())
            m_grace.start();
        return;
    }
    if (!m_channel.isEmpty() && m_channel.stalledFor() < kPatience) {
        m_patience.start(kPatienceStep); // drained() comes first with a client that reads
        return;
    }
    if (!m_jobs.isEmpty() && m_channel.isEmpty()) // that wait for the store to be read
        return;
    m_patience.stop();
    if (!m_channel.isEmpty())
        m_complaint = u"nobody reads the output"_s;
    m_phase = Phase::finished;
    m_store.settle();
    Q_EMIT finished(m_complaint);
}

} // namespace vantle::ctl
