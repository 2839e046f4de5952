// SPDX-License-Identifier: MIT
#include "apps/vantlectl/Command.h"
#include "apps/vantlectl/PresetText.h"
#include "apps/vantlectl/PresetView.h"
#include "apps/vantlectl/StoreSession.h"

#include "VantlePresets/model/PresetFactory.h"

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

struct Options : StoreOptions
{
    std::string preset;
    bool reveal = false;
};

bool namesAFile(const Options &options)
{
    std::error_code ignored;
    return options.dataDirectory.empty() && std::filesystem::exists(options.preset, ignored);
}

void print(const VantlePreset &preset, const Options &options, Output &out)
{
    if (options.json) {
        out.bytes(presetAsJson(preset, options.reveal));
        out.line();
        return;
    }
    for (const QString &line : presetAsText(preset, options.reveal))
        out.line(line);
}

ExitCode show(const Options &options, Output &out)
{
    if (!namesAFile(options)) {
        const StoreSession session(options);
        print(*session.preset(options.preset), options, out);
        return ExitCode::good;
    }
    const std::filesystem::path path = options.preset;
    try {
        print(*readPresetFile(path), options, out);
    } catch (const OutputError &) {
        throw;
    } catch (const std::exception &error) {
        throw Refusal(shown(path) + ": "_L1 + Failure(error).message());
    }
    return ExitCode::good;
}

} // namespace

void addShowCommand(CLI::App &app, Command &chosen)
{
    CLI::App *const command = app.add_subcommand("show", "Show a preset and whether its levels fit");
    const auto options = std::make_shared<Options>();
    command->add_option("PRESET", options->preset, "A preset file, or the name of a preset in the store")
        ->required();
    options->addTo(*command);
    command->add_flag("--reveal", options->reveal, "Show the stream key and the password");
    command->callback([options, &chosen] {
        chosen = [options](Output &out) { return guarded([&] { return show(*options, out); }); };
    });
}

} // namespace vantle::ctl
