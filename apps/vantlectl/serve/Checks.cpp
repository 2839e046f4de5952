// SPDX-License-Identifier: MIT
#include "apps/vantlectl/serve/Checks.h"

#include "apps/vantlectl/CheckStepJson.h"
#include "apps/vantlectl/serve/Methods.h"
#include "apps/vantlectl/serve/Request.h"

#include <chrono>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

constexpr std::size_t kMostChecks = 8; // at a time

CheckOptions optionsOf(Params &params)
{
    CheckOptions options;
    options.output = params.optionalText("output").value_or(QString());
    options.authorityFile = params.optionalText("authorityFile").value_or(QString());
    if (const auto limit = params.optionalNumber("limit")) {
        constexpr double kShortest = 0.001;
        constexpr double kHour = 3600;
        if (*limit < kShortest || *limit > kHour)
            throw ServeError(ErrorCode::invalidParams,
                             u"parameter \"limit\": expected seconds, 0.001 to 3600"_s,
                             ObjectText().text("parameter", u"limit"_s));
        options.limit =
            std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::duration<double>(*limit));
    }
    return options;
}

QByteArray resultOf(const QList<CheckStep> &steps, bool isGood, const QStringList &notes)
{
    return document::encode(document::Format::compact, [&](document::DocumentWriter &writer) {
        writer.beginObject();
        writer.boolean("isGood", isGood);
        writer.key("steps");
        writer.beginArray();
        for (const CheckStep &step : steps)
            writeStep(writer, step);
        writer.endArray();
        writer.key("notes");
        writer.beginArray();
        for (const QString &note : notes)
            writer.string(note);
        writer.endArray();
        writer.endObject();
    });
}

} // namespace

void Checks::begin(ServedStore &store, const QByteArray &id, Params &params)
{
    const QString name = params.text("name");
    const auto assignments = assignmentsOf(params.optionalTexts("assignments").value_or(QStringList()));
    const CheckOptions options = optionsOf(params);
    params.requireNoOthers();
    if (m_running.contains(id))
        throw ServeError(ErrorCode::invalidRequest, u"a check with this id goes on"_s);
    if (m_running.size() >= kMostChecks)
        throw ServeError(ErrorCode::tooMany, u"as many checks go on as there may"_s,
                         ObjectText().number("limit", static_cast<qint64>(kMostChecks)));
    const auto preset = copyOf(*store.preset(name));
    const QStringList notes = applyAssignments(assignments, *preset);
    silenceSrtLog();
    auto check = std::make_unique<ConnectionCheck>(*preset, options);
    connect(
        check.get(), &ConnectionCheck::finished, this,
        [this, id, notes](bool isGood) { finish(id, isGood, notes); }, Qt::QueuedConnection);
    check->start();
    m_running.emplace(id, std::move(check));
}

void Checks::finish(const QByteArray &id, bool isGood, const QStringList &notes)
{
    const auto found = m_running.find(id);
    if (found == m_running.end())
        return; // it was ended while this was under way
    const QByteArray result = resultOf(found->second->steps(), isGood, notes);
    m_running.erase(found);
    m_answer(answerTo(id, result));
}

void Checks::end(const QByteArray &id, const ServeError &reason)
{
    if (m_running.erase(id) > 0)
        m_answer(refusalOf(id, reason));
}

void Checks::endAll(const ServeError &reason)
{
    while (!m_running.empty())
        end(QByteArray(m_running.begin()->first), reason);
}

} // namespace vantle::ctl
