// SPDX-License-Identifier: MIT
#include "apps/vantlectl/AdviceLines.h"
#include "apps/vantlectl/Command.h"
#include "apps/vantlectl/NamedPreset.h"
#include "apps/vantlectl/PresetView.h"

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

struct Options : StoreOptions
{
    std::string preset;
    bool reveal = false;
};

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
    const auto preset = namedPreset(options.preset, options);
    print(*preset, options, out);
    tellAdvice(*preset, fileOfNamedPreset(options.preset, options));
    return ExitCode::good;
}

} // namespace

void addShowCommand(CLI::App &app, Command &chosen)
{
    CLI::App *const command = app.add_subcommand("show", "Show a preset and whether its levels fit");
    const auto options = std::make_shared<Options>();
    command->add_option("PRESET", options->preset, kPresetArgumentHelp)->required();
    options->addTo(*command);
    command->add_flag("--reveal", options->reveal, "Show the stream key and the password");
    command->callback([options, &chosen] {
        chosen = [options](Output &out) { return guarded([&] { return show(*options, out); }); };
    });
}

} // namespace vantle::ctl
