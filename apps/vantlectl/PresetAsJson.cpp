// SPDX-License-Identifier: MIT
#include "apps/vantlectl/LevelFit.h"
#include "apps/vantlectl/PresetView.h"
#include "apps/vantlectl/Secret.h"
#include "apps/vantlectl/encoder/StreamAddress.h"

#include "VantlePresets/document/DocumentWriter.h"
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SRTVantlePreset.h"

namespace vantle::ctl {
namespace {

using document::DocumentWriter;

void writeConnection(DocumentWriter &writer, const RTMPVantlePreset &preset, bool reveal)
{
    writer.string("streamingURL", shownAddress(preset.streamingURL(), reveal));
    writer.integer("portNumber", preset.portNumber());
    writer.string("streamingProtocol", displayName(preset.streamingProtocol()));
    if (preset.type() == StreamingType::youTube || preset.type() == StreamingType::facebook) {
        writer.string("application", preset.application());
        writer.string("streamKey", secret(preset.streamKey(), reveal));
        writer.boolean("isBackup", preset.isBackup());
    }
    writer.boolean("authenticate", preset.authenticate());
    if (preset.authenticate()) {
        writer.string("authenticationLogin", preset.authenticationLogin());
        writer.string("authenticationPassword", secret(preset.authenticationPassword(), reveal));
    }
}

void writeConnection(DocumentWriter &writer, const SRTVantlePreset &preset, bool reveal)
{
    writer.string("streamingURL", shownAddress(preset.streamingURL(), reveal));
    writer.integer("portNumber", preset.portNumber());
    writer.boolean("authenticate", preset.authenticate());
}

void writeRendition(DocumentWriter &writer, const VideoSettings &video)
{
    const LevelFit fit = levelFitOf(video);
    writer.beginObject();
    writer.key("settings");
    video.encode(writer);
    writer.integer("width", video.width());
    writer.integer("height", video.height());
    writer.string("videoCodecType", video.videoCodecType());
    writer.string("videoToolboxProfile", video.videoToolboxProfile());
    writer.integer("maxBitRate", fit.maxBitRate);
    writer.boolean("bitRateFits", fit.bitRateFits);
    if (fit.sizeFits)
        writer.boolean("sizeFits", *fit.sizeFits);
    if (fit.lowestLevel)
        writer.string("lowestLevel", *fit.lowestLevel);
    writer.endObject();
}

} // namespace

QByteArray presetAsJson(const VantlePreset &preset, bool reveal)
{
    return document::encode(document::Format::pretty, [&](DocumentWriter &writer) {
        writer.beginObject();
        writer.string("name", preset.name());
        writer.string("kind", displayName(preset.type()));
        if (const auto *rtmp = dynamic_cast<const RTMPVantlePreset *>(&preset))
            writeConnection(writer, *rtmp, reveal);
        else if (const auto *srt = dynamic_cast<const SRTVantlePreset *>(&preset))
            writeConnection(writer, *srt, reveal);
        writer.key("videoSettings");
        writer.beginArray();
        for (const auto &video : preset.videoSettings())
            writeRendition(writer, *video);
        writer.endArray();
        writer.key("audioSettings");
        writer.beginArray();
        for (const auto &track : preset.audioSettings())
            track->encode(writer);
        writer.endArray();
        writer.endObject();
    });
}

} // namespace vantle::ctl
