// SPDX-License-Identifier: MIT
// What a host does with a preset: read its file and hand the values to its own encoders.
#include "VantlePresets/model/PresetFactory.h"

#include <QtCore/QString>

#include <cstdio>

namespace {

void configureVideo(const vantle::VideoSettings &video)
{
    std::printf("video  %lld x %lld  %s  %s  %lld kbit/s  %g fps\n", video.width(), video.height(),
                qUtf8Printable(video.videoCodecType()), qUtf8Printable(video.videoToolboxProfile()),
                video.bitRate(), video.frameRate());
}

void configureAudio(const vantle::AudioSettings &track)
{
    std::printf("audio  0x%08x  %lld Hz  %lld kbit/s  %s%s\n", track.audioCodecFormatID(), track.sampleRate(),
                track.bitRate(), qUtf8Printable(track.language()), track.isDefault() ? "  default" : "");
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fputs("usage: encoder_settings PRESET.json\n", stderr);
        return 2;
    }
    try {
        const auto preset = vantle::readPresetFile(argv[1]);
        std::printf("%s (%s)\n", qUtf8Printable(preset->name()),
                    qUtf8Printable(vantle::displayName(preset->type())));
        for (const auto &video : preset->videoSettings())
            configureVideo(*video);
        for (const auto &track : preset->audioSettings())
            configureAudio(*track);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
        return 1;
    }
    return 0;
}
