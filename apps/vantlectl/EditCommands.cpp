// SPDX-License-Identifier: MIT
#include "apps/vantlectl/PresetNames.h"
#include "apps/vantlectl/StoreSession.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/model/PresetFactory.h"

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

[[noreturn]] void refuseTakenName(const QString &name)
{
    throw Refusal("a preset named \""_L1 + escapedControls(name) + "\" exists"_L1);
}

ExitCode add(const Options &options, Output &out)
{
    std::optional<QString> wanted;
    if (options.newName)
        wanted = nameForPreset(*options.newName);
    StoreSession session(options);
    PresetsManager &manager = session.manager();
    const auto type = streamingTypes().fromText(QString::fromStdString(options.kind)).value();
    std::shared_ptr<VantlePreset> preset;
    if (!wanted) {
        preset = manager.addNewPreset(type);
    } else {
        if (manager.presetWithName(*wanted))
            refuseTakenName(*wanted);
        preset = makePreset(type, *wanted);
        manager.setPresets(manager.presets() + PresetsList{preset});
        manager.save(preset);
    }
    const ExitCode code = session.finish();
    if (code == ExitCode::good)
        reportPreset(out, *preset, options.json);
    return wanted && preset->name() != *wanted ? ExitCode::failed : code;
}

ExitCode duplicate(const Options &options, Output &out)
{
    StoreSession session(options);
    const auto source = session.preset(options.name);
    if (const QString fault = nameFault(source->name()); !fault.isEmpty())
        throw Refusal(fault + ", and the copy's would; rename it first"_L1);
    const auto copy = session.manager().duplicate(source);
    const ExitCode code = session.finish();
    if (code == ExitCode::good)
        reportPreset(out, *copy, options.json);
    return code;
}

ExitCode rename(const Options &options, Output &out)
{
    StoreSession session(options);
    const auto preset = session.preset(options.name);
    const QString oldName = preset->name();
    const QString wanted = nameForPreset(*options.newName);
    if (!session.manager().rename(preset, oldName, wanted))
        refuseTakenName(wanted);
    const QString given = preset->name();
    const ExitCode code = session.finish();
    if (session.manager().hasUnsavedEdits(preset))
        preset->setName(oldName); // which its file still has
    reportPreset(out, *preset, options.json);
    return preset->name() != given ? ExitCode::failed : code; // another process was faster
}

ExitCode remove(const Options &options, Output &out)
{
    StoreSession session(options);
    const auto preset = session.preset(options.name);
    session.manager().remove(preset);
    const ExitCode code = session.finish();
    if (options.json && code == ExitCode::good)
        reportPreset(out, *preset, true);
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
    added->makesFolder = true;
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
