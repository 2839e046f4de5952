// SPDX-License-Identifier: MIT
#include "apps/vantlectl/StoreSession.h"

#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/store/NameRules.h"

#include <optional>
#include <utility>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

struct Options : StoreOptions
{
    std::string kind;
    std::string name;
    std::optional<std::string> newName;
};

ExitCode add(const Options &options, Output &out)
{
    StoreSession session(options);
    PresetsManager &manager = session.manager();
    std::optional<QString> wanted;
    const auto type = streamingTypes().fromText(QString::fromStdString(options.kind)).value();
    std::shared_ptr<VantlePreset> preset;
    if (!options.newName) {
        preset = manager.addNewPreset(type);
    } else {
        const QString name = trimmedName(QString::fromStdString(*options.newName));
        if (name.isEmpty() || name.contains(u'/') || manager.presetWithName(name))
            throw Refusal(u"This name is invalid or already taken."_s);
        wanted = name;
        preset = makePreset(type, name);
        manager.setPresets(manager.presets() + PresetsList{preset});
        manager.save(preset);
    }
    const ExitCode code = session.finish();
    printPreset(out, *preset, options.json);
    return wanted && preset->name() != *wanted ? ExitCode::failed : code;
}

ExitCode duplicate(const Options &options, Output &out)
{
    StoreSession session(options);
    const auto copy = session.manager().duplicate(session.preset(options.name));
    const ExitCode code = session.finish();
    printPreset(out, *copy, options.json);
    return code;
}

ExitCode rename(const Options &options, Output &out)
{
    StoreSession session(options);
    const auto preset = session.preset(options.name);
    if (!session.manager().rename(preset, preset->name(), QString::fromStdString(*options.newName)))
        throw Refusal(u"This name is invalid or already taken."_s);
    const QString wanted = preset->name();
    const ExitCode code = session.finish();
    printPreset(out, *preset, options.json);
    return preset->name() != wanted ? ExitCode::failed : code; // another process was faster
}

ExitCode remove(const Options &options, Output &out)
{
    StoreSession session(options);
    const auto preset = session.preset(options.name);
    session.manager().remove(preset);
    const ExitCode code = session.finish();
    if (options.json && code == ExitCode::good)
        printPreset(out, *preset, true);
    return code;
}

using Run = ExitCode (*)(const Options &, Output &);

std::pair<CLI::App *, std::shared_ptr<Options>> addCommand(CLI::App &app, Command &chosen, const char *name,
                                                           const char *help, Run run)
{
    CLI::App *const command = app.add_subcommand(name, help);
    const auto options = std::make_shared<Options>();
    options->addTo(*command);
    command->callback([options, run, &chosen] {
        chosen = [options, run](Output &out) { return guarded([&] { return run(*options, out); }); };
    });
    return {command, options};
}

} // namespace

void addEditCommands(CLI::App &app, Command &chosen)
{
    const auto [add_, added] = addCommand(app, chosen, "add", "Add a preset with its kind's defaults", add);
    add_->add_option("KIND", added->kind, "HLS, YouTube, RTMP, Wowza, Facebook or SRT")
        ->required()
        ->check(kindLabel());
    add_->add_option("--name", added->newName, "Its name, in place of \"KIND Preset\"");

    const auto [duplicate_, duplicated] =
        addCommand(app, chosen, "duplicate", "Add a copy of a preset's renditions and tracks", duplicate);
    duplicate_->add_option("NAME", duplicated->name, "The preset to copy")->required();

    const auto [rename_, renamed] = addCommand(app, chosen, "rename", "Rename a preset and its file", rename);
    rename_->add_option("OLD", renamed->name, "The preset's name")->required();
    rename_->add_option("NEW", renamed->newName, "Its new name")->required();

    const auto [remove_, removed] = addCommand(app, chosen, "remove", "Delete a preset and its file", remove);
    remove_->add_option("NAME", removed->name, "The preset to delete")->required();
}

} // namespace vantle::ctl
