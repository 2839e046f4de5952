// SPDX-License-Identifier: MIT
#include "apps/vantlectl/AdviceLines.h"
#include "apps/vantlectl/FieldTable.h"
#include "apps/vantlectl/serve/Methods.h"

#include "VantlePresets/advice/Advice.h"
#include "VantlePresets/document/DocumentWriter.h"

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;
using document::DocumentWriter;
using document::Format;

/// The text of an object whose members `write` writes.
template <class Write>
QByteArray object(Write write)
{
    return document::encode(Format::compact, [&](DocumentWriter &writer) {
        writer.beginObject();
        write(writer);
        writer.endObject();
    });
}

} // namespace

QByteArray listPresets(ServedStore &store, Params &params)
{
    const auto label = params.optionalText("kind");
    params.requireNoOthers();
    const std::optional<StreamingType> type = label ? std::optional(kindOf(*label)) : std::nullopt;
    return object([&](DocumentWriter &writer) {
        writer.key("presets");
        writer.beginArray();
        for (const auto &preset : store.manager().presets()) {
            if (type && preset->type() != *type)
                continue;
            writer.beginObject();
            writer.string("name", preset->name());
            writer.string("type", displayName(preset->type()));
            writer.integer("videoSettings", preset->videoSettings().size());
            writer.integer("audioSettings", preset->audioSettings().size());
            writer.endObject();
        }
        writer.endArray();
    });
}

QByteArray getPreset(ServedStore &store, Params &params)
{
    const QString name = params.text("name");
    const bool reveal = params.flag("reveal");
    params.requireNoOthers();
    return store.presentation(*store.preset(name), reveal).json();
}

QByteArray listFields(ServedStore &, Params &params)
{
    const StreamingType type = kindOf(params.text("kind"));
    params.requireNoOthers();
    return object([&](DocumentWriter &writer) {
        writer.key("fields");
        writer.beginArray();
        for (const AssignableField &field : assignableFields(type))
            writeField(writer, field);
        writer.endArray();
    });
}

QByteArray advise(ServedStore &store, Params &params)
{
    const auto name = params.optionalText("name");
    const auto document = params.optionalObject("document");
    params.requireNoOthers();
    if (name.has_value() == document.has_value())
        throw ServeError(ErrorCode::invalidParams, u"either \"name\" or \"document\" is wanted"_s);
    QList<Advice> advice;
    if (document) {
        static_cast<void>(presetOfDocument(*document));
        advice = adviceForDocument(*document);
    } else {
        const auto preset = store.preset(*name);
        advice = adviceOn(*preset, store.fileOf(*preset));
    }
    return object([&](DocumentWriter &writer) { writeAdvice(writer, advice); });
}

} // namespace vantle::ctl
