// SPDX-License-Identifier: MIT
#include "apps/vantlectl/NamedPreset.h"

#include "apps/vantlectl/Assignments.h"
#include "apps/vantlectl/InputFile.h"
#include "apps/vantlectl/PresetText.h"

#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/store/PresetsFolder.h"

namespace vantle::ctl {
namespace {

bool namesAFile(const std::string &argument, const StoreOptions &options)
{
    if (argument.find('/') != std::string::npos)
        return true; // no preset's name holds one
    if (argument == kStandardStream)
        return true;
    std::error_code ignored;
    return options.dataDirectory.empty() && argument.ends_with(".json") &&
           std::filesystem::is_regular_file(argument, ignored);
}

} // namespace

std::shared_ptr<VantlePreset> namedPreset(const std::string &argument, const StoreOptions &options)
{
    if (!namesAFile(argument, options))
        return StoreSession(options).preset(argument);
    try {
        return readPresetArgument(argument);
    } catch (const std::exception &error) {
        throw Refusal(shown(argument) + QLatin1StringView(": ") + Failure(error).message());
    }
}

std::shared_ptr<VantlePreset> assignedPreset(const std::string &argument, const StoreOptions &options,
                                             const QList<Assignment> &assignments)
{
    auto preset = namedPreset(argument, options);
    try {
        applyAndTell(assignments, *preset);
    } catch (const AssignmentError &error) {
        throw Refusal(QString::fromUtf8(error.what()));
    }
    return preset;
}

std::filesystem::path fileOfNamedPreset(const std::string &argument, const StoreOptions &options)
{
    return namesAFile(argument, options) ? std::filesystem::path(argument) : fileInStore(argument, options);
}

std::filesystem::path fileInStore(const std::string &name, const StoreOptions &options)
{
    return fileSystemPath(presetsFolderPath(options.directory())) / (name + ".json");
}

} // namespace vantle::ctl
