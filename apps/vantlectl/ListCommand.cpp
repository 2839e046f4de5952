// SPDX-License-Identifier: MIT
#include "apps/vantlectl/PresetText.h"
#include "apps/vantlectl/StoreSession.h"
#include "apps/vantlectl/Table.h"

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

struct Options : StoreOptions
{
    std::string kind;
    bool namesOnly = false;
};

ExitCode list(const Options &options, Output &out)
{
    StoreSession session(options);
    const PresetsManager &manager = session.manager();
    const PresetsList presets = options.kind.empty()
                                    ? manager.presets()
                                    : manager.presetsWithTypeName(QString::fromStdString(options.kind));
    Table table(QString{});
    for (const auto &preset : presets) {
        if (options.json || options.namesOnly)
            printPreset(out, *preset, options.json);
        else
            table.add({preset->name(), displayName(preset->type()), countsOf(*preset)});
    }
    for (const QString &line : table.lines())
        out.line(line);
    return ExitCode::good;
}

} // namespace

CLI::Validator kindLabel()
{
    std::vector<std::string> labels;
    for (const QString &label : streamingTypes().texts())
        labels.push_back(label.toStdString());
    return CLI::IsMember(labels);
}

void addListCommand(CLI::App &app, Command &chosen)
{
    CLI::App *const command = app.add_subcommand("list", "List the presets of the store");
    const auto options = std::make_shared<Options>();
    options->addTo(*command);
    command->add_option("--kind", options->kind, "Only presets of this kind")->check(kindLabel());
    command->add_flag("--names", options->namesOnly, "Names alone, one a line");
    command->callback([options, &chosen] {
        chosen = [options](Output &out) { return guarded([&] { return list(*options, out); }); };
    });
}

} // namespace vantle::ctl
