// SPDX-License-Identifier: MIT
#include "apps/vantlectl/StoreSession.h"

#include "apps/support/DataDirectory.h"
#include "apps/vantlectl/PresetNames.h"
#include "apps/vantlectl/PresetText.h"
#include "apps/vantlectl/PresetView.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/store/PresetsFolder.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>

#include <algorithm>

namespace vantle::ctl {

using namespace Qt::StringLiterals;

void StoreOptions::addTo(CLI::App &command)
{
    addDirectoryTo(command);
    command.add_flag("--json", json, "For machines: one JSON object per line");
}

void StoreOptions::addDirectoryTo(CLI::App &command)
{
    command
        .add_option("--data-dir", dataDirectory,
                    "The data directory in place of VANTLE_DATA_DIR or the machine-wide one")
        ->check(dataDirectoryFault)
        ->take_last(); // an alias may bring one
}

QString StoreOptions::directory() const
{
    return chosenDataDirectory(dataDirectory).value_or(machineDataDirectories().constFirst());
}

namespace {

bool isMissing(const std::filesystem::path &path)
{
    std::error_code error; // of what can't be looked at, the store tells why
    return std::filesystem::status(path, error).type() == std::filesystem::file_type::not_found;
}

/// Refuses a presets folder that is not there, too.
void requireFolder(const QString &dataDirectory)
{
    requireDirectory(dataDirectory);
    if (const auto path = fileSystemPath(presetsFolderPath(dataDirectory)); isMissing(path))
        throw Refusal(shown(path) + ": there is no such folder; add and import make it"_L1);
}

} // namespace

void requireDirectory(const QString &dataDirectory)
{
    if (const auto path = fileSystemPath(dataDirectory); isMissing(path))
        throw Refusal(shown(path) + ": there is no such directory"_L1);
}

StoreSession::StoreSession(const StoreOptions &options)
{
    const QString directory = options.directory();
    if (!options.makesFolder)
        requireFolder(directory);
    // What is logged of a start that fails is said in the session's own words.
    const auto lines = std::make_shared<QStringList>(); // one call of a sink at a time
    setLogSink([lines](const QString &line) { lines->append(line); });
    m_manager = std::make_unique<PresetsManager>([&] { return QStringList{directory}; });
    setLogSink(tellLogLine);
    if (!m_manager->startError())
        std::for_each(lines->cbegin(), lines->cend(), tellLogLine);
    QEventLoop loop;
    QObject::connect(m_manager.get(), &PresetsManager::didLoad, &loop, &QEventLoop::quit);
    QObject::connect(m_manager.get(), &PresetsManager::startFailed, &loop, &QEventLoop::quit);
    if (!m_manager->startError())
        loop.exec();
    if (!m_manager->isLoaded())
        throw Refusal(m_manager->startError().value_or(u"stopped before the presets were read"_s));
}

StoreSession::~StoreSession()
{
    m_manager.reset();
}

std::shared_ptr<VantlePreset> StoreSession::preset(const std::string &argument) const
{
    const QString name = nameArgument(argument);
    if (auto found = m_manager->presetWithName(name))
        return found;
    throw Refusal("there is no preset named \""_L1 + escapedControls(name) + u'"');
}

ExitCode StoreSession::finish()
{
    // An outcome can lead to another save, under a name that is free.
    do {
        m_manager->waitForFileTasks();
        QCoreApplication::processEvents();
    } while (m_manager->hasPendingSaves());
    // A write that failed because another process took the name has been made good under the next one.
    const PresetsList &presets = m_manager->presets();
    const bool isAllSaved = std::none_of(presets.begin(), presets.end(), [this](const auto &preset) {
        return m_manager->hasUnsavedEdits(preset);
    });
    const QList<PresetsFailure> failures = m_manager->failures();
    const bool isAllDone = std::all_of(failures.begin(), failures.end(), [](const PresetsFailure &failure) {
        return failure.operation == PresetsFailure::Operation::load;
    });
    return isAllSaved && isAllDone ? ExitCode::good : ExitCode::failed;
}

ExitCode guarded(const std::function<ExitCode()> &work)
{
    try {
        return work();
    } catch (const Refusal &refusal) {
        complain(QString::fromUtf8(refusal.what()));
        return ExitCode::failed;
    }
}

void printPreset(Output &out, const VantlePreset &preset, bool json)
{
    if (!json) {
        out.line(escapedControls(preset.name()));
        return;
    }
    out.bytes(presetAsJson(preset, false));
    out.line();
}

void reportPreset(Output &out, const VantlePreset &preset, bool json)
{
    if (!isQuiet())
        printPreset(out, preset, json);
}

} // namespace vantle::ctl
