// SPDX-License-Identifier: MIT
#include "apps/vantlectl/AdviceLines.h"
#include "apps/vantlectl/Assignments.h"
#include "apps/vantlectl/NamedPreset.h"
#include "apps/vantlectl/Positions.h"
#include "apps/vantlectl/StoreSession.h"

#include <utility>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

struct Options : StoreOptions
{
    std::string name;
    std::vector<std::string> assignments;
    bool forService = false;
};

/// Without those of renditions and tracks.
QList<Assignment> ofThePreset(QList<Assignment> assignments)
{
    assignments.removeIf([](const Assignment &assignment) { return assignment.path().contains(u'.'); });
    return assignments;
}

/// Applies the assignments until they are on disk: when another process was faster, to what that one wrote.
ExitCode applyAndSave(StoreSession &session, const std::shared_ptr<VantlePreset> &preset,
                      const Options &options, const QList<Assignment> &assignments)
{
    PresetsManager &manager = session.manager();
    bool isChanged = true;
    const auto connection =
        QObject::connect(&manager, &PresetsManager::presetUpdated,
                         [&](const auto &updated) { isChanged = isChanged || updated == preset; });
    const Positions positions(*preset);
    ExitCode code = ExitCode::good;
    for (bool isFirst = true; std::exchange(isChanged, false); isFirst = false) {
        positions.require(*preset, assignments);
        applyAndTell(assignments, *preset);
        if (options.forService) {
            setForService(*preset);
            // What the user named stays; what of it was limited has been told.
            static_cast<void>(applyAll(ofThePreset(assignments), *preset));
        }
        for (const Assignment &assignment : assignments)
            assignment.requireKept(*preset);
        if (isFirst)
            tellAdvice(*preset, fileInStore(options.name, options));
        manager.saveUnlessChanged(preset);
        code = session.finish();
    }
    QObject::disconnect(connection);
    if (manager.rowOf(preset) < 0)
        throw Refusal(u"another process has removed or replaced the preset; nothing was changed"_s);
    if (code == ExitCode::failed && manager.failures().isEmpty())
        throw Refusal(
            u"another process has changed the file, which can't be read now; nothing was changed"_s);
    return code;
}

ExitCode set(const Options &options, Output &out)
{
    const auto assignments = parseAssignments(options.assignments);
    if (!assignments)
        return ExitCode::usage;

    StoreSession session(options);
    const auto preset = session.preset(options.name);
    ExitCode code = ExitCode::failed;
    try {
        code = applyAndSave(session, preset, options, withTextsRead(*assignments));
    } catch (const AssignmentError &error) {
        throw Refusal(QString::fromUtf8(error.what()) + "; nothing was changed"_L1);
    }
    if (options.json && code == ExitCode::good)
        reportPreset(out, *preset, true);
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
    command->add_option("FIELD=VALUE", options->assignments, "What to change");
    command->add_flag(
        "--for-service", options->forService,
        "Also what YouTube or Facebook needs: protocol, port, and the host unless it is another's");
    command->callback([options, &chosen] {
        if (options->assignments.empty() && !options->forService)
            throw CLI::RequiredError("FIELD=VALUE or --for-service");
        chosen = [options](Output &out) { return guarded([&] { return set(*options, out); }); };
    });
}

} // namespace vantle::ctl
