// SPDX-License-Identifier: MIT
#include "apps/vantlectl/encoder/EncoderPlan.h"
#include "apps/vantlectl/serve/Methods.h"

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

EncoderRequest requestOf(Params &params)
{
    EncoderRequest request;
    request.input = params.optionalText("input").value_or(QString());
    request.output = params.optionalText("output").value_or(QString());
    request.isPaced = !params.flag("fast");
    request.duration = params.optionalNumber("duration");
    if (request.duration && *request.duration <= 0)
        throw ServeError(ErrorCode::invalidParams, u"parameter \"duration\": expected seconds above 0"_s,
                         ObjectText().text("parameter", u"duration"_s));
    constexpr qint64 kMostChannels = 1024; // far above what any input has
    const auto channels = params.optionalInteger("inputChannels");
    if (channels && (request.input.isEmpty() || *channels < 0 || *channels > kMostChannels))
        throw ServeError(ErrorCode::invalidParams,
                         u"parameter \"inputChannels\": expected those of \"input\", 0 to 1024"_s,
                         ObjectText().text("parameter", u"inputChannels"_s));
    request.inputChannels = static_cast<int>(channels.value_or(0));
    return request;
}

/// The arguments that hold a secret, whole, by their place.
QByteArray secretArguments(const Arguments &arguments)
{
    const QStringList shown = arguments.texts(false);
    const QStringList real = arguments.texts(true);
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
    applyAssignments(assignments, *preset);
    const EncoderPlan plan = planEncoder(*preset, request);
    if (!plan.problems.isEmpty())
        throw ServeError(ErrorCode::notPlanned, plan.problems.constFirst(),
                         ObjectText().texts("problems", plan.problems));
    ObjectText result;
    result.texts("arguments", plan.arguments.texts(false)).texts("notes", plan.notes);
    if (reveal)
        result.raw("secrets", secretArguments(plan.arguments));
    return result.json();
}

} // namespace vantle::ctl
