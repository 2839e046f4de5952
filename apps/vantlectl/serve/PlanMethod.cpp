// SPDX-License-Identifier: MIT
#include "apps/vantlectl/EncoderRun.h"
#include "apps/vantlectl/serve/Methods.h"

#include "VantlePresets/encoder/EncoderPlan.h"

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

[[noreturn]] void refuse(const QString &parameter, const QString &expectation)
{
    throw ServeError(ErrorCode::invalidParams,
                     "parameter \""_L1 + parameter + "\": expected "_L1 + expectation,
                     ObjectText().text("parameter", parameter));
}

EncoderRequest requestOf(Params &params)
{
    EncoderRequest request;
    request.setInput(params.optionalText("input").value_or(QString()));
    request.setOutput(params.optionalText("output").value_or(QString()));
    request.setPaced(!params.flag("fast"));
    const auto duration = params.optionalNumber("duration");
    if (duration && (*duration <= 0 || *duration > kLongestRun))
        refuse(u"duration"_s, u"seconds above 0 and at most 31536000"_s);
    request.setDuration(duration);
    constexpr qint64 kMostChannels = 1024; // far above what any input has
    const auto channels = params.optionalInteger("inputChannels");
    if (channels && (request.input().isEmpty() || *channels < 0 || *channels > kMostChannels))
        refuse(u"inputChannels"_s, u"those of \"input\", 0 to 1024"_s);
    if (channels)
        request.setInputChannels(static_cast<int>(*channels));
    return request;
}

/// The arguments that hold a secret, whole, by their place.
QByteArray secretArguments(const EncoderPlan &plan)
{
    const QStringList shown = plan.maskedArguments();
    const QStringList real = plan.arguments();
    QByteArrayList secrets;
    for (qsizetype i = 0; i < real.size(); ++i) {
        if (real[i] != shown[i])
            secrets.append(ObjectText().number("argument", i).text("text", real[i]).json());
    }
    return jsonArray(secrets);
}

} // namespace

QByteArray planPreset(ServedStore &store, Params &params)
{
    const QString name = params.text("name");
    const auto assignments = assignmentsOf(params.optionalTexts("assignments").value_or(QStringList()));
    const bool reveal = params.flag("reveal");
    const EncoderRequest request = requestOf(params);
    params.requireNoOthers();
    const auto preset = copyOf(*store.preset(name));
    const QStringList limitations = applyAssignments(assignments, *preset);
    const EncoderPlan plan = planEncoder(*preset, request);
    const QStringList problems = plan.problems();
    if (!problems.isEmpty())
        throw ServeError(ErrorCode::notPlanned, problems.constFirst(),
                         ObjectText().texts("problems", problems));
    ObjectText result;
    result.texts("arguments", plan.maskedArguments()).texts("notes", limitations + plan.notes());
    if (reveal)
        result.raw("secrets", secretArguments(plan));
    return result.json();
}

} // namespace vantle::ctl
