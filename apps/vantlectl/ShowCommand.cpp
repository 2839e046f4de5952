// SPDX-License-Identifier: MIT
#include "apps/vantlectl/Command.h"
#include "apps/vantlectl/PresetText.h"
#include "apps/vantlectl/PresetView.h"

#include "VantlePresets/model/PresetFactory.h"

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

struct Options
{
    std::string file;
    bool json = false;
    bool reveal = false;
};

ExitCode show(const Options &options, Output &out)
{
    const std::filesystem::path path = options.file;
    std::shared_ptr<VantlePreset> preset;
    try {
        preset = readPresetFile(path);
    } catch (const std::exception &error) {
        complain(shown(path) + ": "_L1 + Failure(error).message());
        return ExitCode::failed;
    }
    if (options.json) {
        out.bytes(presetAsJson(*preset, options.reveal));
        out.line();
        return ExitCode::good;
    }
    for (const QString &line : presetAsText(*preset, options.reveal))
        out.line(line);
    return ExitCode::good;
}

} // namespace

void addShowCommand(CLI::App &app, Command &chosen)
{
    CLI::App *const command = app.add_subcommand("show", "Show a preset and whether its levels fit");
    const auto options = std::make_shared<Options>();
    command->add_option("FILE", options->file, "The preset file")->required();
    command->add_flag("--json", options->json, "For machines: one JSON object");
    command->add_flag("--reveal", options->reveal, "Show the stream key and the password");
    command->callback(
        [options, &chosen] { chosen = [options](Output &out) { return show(*options, out); }; });
}

} // namespace vantle::ctl
