// SPDX-License-Identifier: MIT
// A host without a window: takes a preset of the machine's by name and hands its values to the encoders.
#include "VantlePresets/store/PresetsManager.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>

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

/// The process's exit code.
int configureEncoders(const vantle::PresetsManager &manager, const QString &name)
{
    const auto preset = manager.presetWithName(name);
    if (!preset) {
        std::fprintf(stderr, "encoder_settings: no preset named %s\n", qUtf8Printable(name));
        return 1;
    }
    std::printf("%s (%s)\n", qUtf8Printable(preset->name()),
                qUtf8Printable(vantle::displayName(preset->type())));
    for (const auto &video : preset->videoSettings())
        configureVideo(*video);
    for (const auto &track : preset->audioSettings())
        configureAudio(*track);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser options;
    options.addHelpOption();
    options.addOption({QStringLiteral("data-dir"), QStringLiteral("Folder that stands in for /var/lib"),
                       QStringLiteral("DIR"), QStringLiteral("/var/lib")});
    options.addPositionalArgument(QStringLiteral("NAME"), QStringLiteral("The preset"));
    options.process(application);
    if (options.positionalArguments().size() != 1)
        options.showHelp(2);

    // Nothing is in the list before the folder has been read, which needs the event loop.
    vantle::PresetsManager manager([&] { return QStringList{options.value(QStringLiteral("data-dir"))}; });
    QObject::connect(&manager, &vantle::PresetsManager::didLoad, &manager, [&] {
        QCoreApplication::exit(configureEncoders(manager, options.positionalArguments().first()));
    });
    QObject::connect(&manager, &vantle::PresetsManager::startFailed, &manager, [](const QString &error) {
        std::fprintf(stderr, "encoder_settings: %s\n", qUtf8Printable(error));
        QCoreApplication::exit(1);
    });
    return QCoreApplication::exec();
}
