// SPDX-License-Identifier: MIT
#include "apps/vantlectl/Assignments.h"
#include "apps/vantlectl/StoreSession.h"

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

struct Options : StoreOptions
{
    std::string name;
    std::vector<std::string> assignments;
};

ExitCode set(const Options &options, Output &out)
{
    const auto assignments = parseAssignments(options.assignments);
    if (!assignments)
        return ExitCode::usage;

    StoreSession session(options);
    const auto preset = session.preset(options.name);
    try {
        applyAll(withTextsRead(*assignments), *preset);
        for (const Assignment &assignment : *assignments)
            assignment.requireKept(*preset);
    } catch (const AssignmentError &error) {
        throw Refusal(QString::fromUtf8(error.what()) + "; nothing was changed"_L1);
    }
    session.manager().save(preset);
    const ExitCode code = session.finish();
    if (options.json && code == ExitCode::good)
        printPreset(out, *preset, true);
    return code;
}

} // namespace

void addSetCommand(CLI::App &app, Command &chosen)
{
    CLI::App *const command = app.add_subcommand("set", "Change fields of a preset");
    command->footer(
        "Fields are named as in preset files: portNumber=1936, videoSettings.0.codec=HEVC,\n"
        "audioSettings.1.inputChannels=2,3. Renditions and tracks of HLS and SRT presets are added\n"
        "with videoSettings.+ and removed with videoSettings.1.- (counted from 0).\n"
        "streamKey=@FILE takes a text from a file's one line, streamKey=@- from standard input; a text\n"
        "that begins with @ is written @@.\n"
        "All assignments are carried out, in their order, or none is.");
    const auto options = std::make_shared<Options>();
    options->addTo(*command);
    command->add_option("NAME", options->name, "The preset")->required();
    command->add_option("FIELD=VALUE", options->assignments, "What to change")->required();
    command->callback([options, &chosen] {
        chosen = [options](Output &out) { return guarded([&] { return set(*options, out); }); };
    });
}

} // namespace vantle::ctl
