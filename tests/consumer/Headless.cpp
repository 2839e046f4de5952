// SPDX-License-Identifier: MIT
// What has to work across the boundary of the shared libraries, in a host without a window. Arguments: a
// preset file of the kind YouTube and a folder to work in. Each line that is not true ends it with its
// number.
#include "VantlePresets/advice/Advice.h"
#include "VantlePresets/advice/ServiceConnection.h"
#include "VantlePresets/core/LogSink.h"
#include "VantlePresets/encoder/EncoderPlan.h"
#include "VantlePresets/model/HLSVantlePreset.h"
#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/store/PresetsManager.h"
#include "watchfolder/VRXWatchFolder.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QMetaProperty>

#include <cstdio>

#define REQUIRE(condition)                                                                                   \
    do {                                                                                                     \
        if (!(condition)) {                                                                                  \
            std::fprintf(stderr, "line %d: %s\n", __LINE__, #condition);                                     \
            return 1;                                                                                        \
        }                                                                                                    \
    } while (false)

namespace {

class SilentDelegate : public vantle::VRXWatchFolderDelegate
{
};

bool isRefused(const char *document)
{
    try {
        (void)vantle::decodePreset(document);
    } catch (const vantle::DecodingError &error) {
        return error.place() == QLatin1String("videoSettings");
    }
    return false;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    REQUIRE(argc == 3);

    const auto preset = vantle::readPresetFile(argv[1]);
    const auto pushed = std::dynamic_pointer_cast<vantle::RTMPVantlePreset>(preset);
    REQUIRE(pushed && !qobject_cast<vantle::HLSVantlePreset *>(preset.get()));
    REQUIRE(qobject_cast<vantle::RTMPVantlePreset *>(preset.get()) == pushed.get());
    REQUIRE(pushed->property("streamingProtocol").value<vantle::RTMPVantlePreset::StreamingProtocol>() ==
            vantle::RTMPVantlePreset::StreamingProtocol::rtmps);
    REQUIRE(isRefused(R"({"type": "HLS"})"));
    REQUIRE(!preset->presetImage().isEmpty());

    REQUIRE(vantle::adviceFor(*preset).isEmpty());
    pushed->setPortNumber(1);
    REQUIRE(vantle::adviceFor(*preset).size() == 1 && vantle::setServiceConnection(*preset));
    REQUIRE(pushed->portNumber() == 443);

    const vantle::EncoderPlan plan = vantle::planEncoder(*preset);
    REQUIRE(plan.problems().isEmpty() && plan.arguments().size() == plan.maskedArguments().size());
    REQUIRE(!plan.maskedArguments().join(u' ').contains(plan.secrets().first()));

    int changes = 0;
    QObject::connect(preset.get(), &vantle::ObservableRecord::objectWillChange, [&] { ++changes; });
    preset->setName(preset->name());
    REQUIRE(changes == 1);
    preset->audioSettings().first()->setDelegate(preset);
    preset->audioSettings().first()->setIsDefault(false);
    preset->audioSettings().first()->setIsDefault(true);
    REQUIRE(preset->defaultAudioSettings() == preset->audioSettings().first());

    QStringList lines;
    vantle::setLogSink([&](const QString &line) { lines.append(line); });
    const QString folder = QString::fromLocal8Bit(argv[2]);
    {
        vantle::PresetsManager manager([&] { return QStringList{folder}; });
        QObject::connect(&manager, &vantle::PresetsManager::didLoad, &application, &QCoreApplication::quit);
        QObject::connect(&manager, &vantle::PresetsManager::startFailed, &application,
                         &QCoreApplication::quit);
        QCoreApplication::exec();
        REQUIRE(manager.isLoaded() && !manager.startError());
        REQUIRE(manager.addNewPreset(vantle::StreamingType::srt)
                    ->name()
                    .startsWith(QStringLiteral("SRT Preset")));
        manager.waitForFileTasks();
        QCoreApplication::processEvents();
        REQUIRE(manager.watchFolder()->isWatchingPath());
    }
    REQUIRE(lines.filter(QStringLiteral("Preset Saved: ")).size() == 1);
    vantle::setLogSink({});

    const auto delegate = std::make_shared<SilentDelegate>();
    vantle::VRXWatchFolder missing(folder + QStringLiteral("/missing"), delegate);
    vantle::WatchFolderError error;
    REQUIRE(!missing.startWatching(&error));
    REQUIRE(error.code == vantle::WatchFolderError::FolderNotReachable);
    return 0;
}
