// SPDX-License-Identifier: MIT
#include "apps/vantlectl/PresetView.h"

#include "VantlePresets/document/DocumentWriter.h"
#include "VantlePresets/model/Secrets.h"
#include "VantlePresets/settings/LevelFit.h"

namespace vantle::ctl {
namespace {

using document::DocumentWriter;
using document::Format;

void writeRendition(DocumentWriter &writer, const VideoSettings &video)
{
    const LevelFit fit(video);
    writer.beginObject();
    writer.integer("width", video.width());
    writer.integer("height", video.height());
    writer.string("videoCodecType", video.videoCodecType());
    writer.string("videoToolboxProfile", video.videoToolboxProfile());
    writer.integer("maxBitRate", fit.maxBitRate());
    writer.boolean("bitRateFits", fit.bitRateFits());
    if (fit.sizeFits())
        writer.boolean("sizeFits", *fit.sizeFits());
    if (fit.lowestLevel())
        writer.string("lowestLevel", *fit.lowestLevel());
    writer.endObject();
}

void writeDerived(DocumentWriter &writer, const VantlePreset &preset)
{
    writer.key("derived");
    writer.beginObject();
    writer.key("videoSettings");
    writer.beginArray();
    for (const auto &video : preset.videoSettings())
        writeRendition(writer, *video);
    writer.endArray();
    writer.endObject();
}

/// The members that `write` writes, without the braces around them.
template <class Write>
QByteArray members(Write write)
{
    QByteArray object = document::encode(Format::compact, [&](DocumentWriter &writer) {
        writer.beginObject();
        write(writer);
        writer.endObject();
    });
    return object.sliced(1, object.size() - 2);
}

} // namespace

QByteArray presetAsJson(const VantlePreset &preset, bool reveal)
{
    const QByteArray document =
        reveal ? preset.encoded(Format::compact) : withMaskedSecrets(preset)->encoded(Format::compact);
    const auto name = members([&](DocumentWriter &writer) { writer.string("name", preset.name()); });
    const auto derived = members([&](DocumentWriter &writer) { writeDerived(writer, preset); });
    return '{' + name + ',' + document.sliced(1, document.size() - 2) + ',' + derived + '}';
}

} // namespace vantle::ctl
