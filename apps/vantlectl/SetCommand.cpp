// SPDX-License-Identifier: MIT
#include "apps/vantlectl/AdviceLines.h"
#include "apps/vantlectl/Assignment.h"
#include "apps/vantlectl/NamedPreset.h"
#include "apps/vantlectl/StoreSession.h"

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

struct Options : StoreOptions
{
    std::string name;
    std::vector<std::string> assignments;
    bool forService = false;
};

/// Fields of the preset itself that its document would not hold: they would be gone with this process.
void requireKept(const VantlePreset &preset, const QList<Assignment> &assignments)
{
    const QByteArray document = preset.encoded(document::Format::compact);
    for (const Assignment &assignment : assignments) {
        const QString &path = assignment.path();
        if (path.contains(u'.') || document.contains(QByteArray('"' + path.toUtf8() + "\":")))
            continue;
        const bool isLogin = path.startsWith("authentication"_L1);
        throw AssignmentError(path, isLogin ? u"kept only while authenticate is true"_s
                                            : "not kept in the files of "_L1 + displayName(preset.type()) +
                                                  " presets"_L1);
    }
}

ExitCode set(const Options &options, Output &out)
{
    const auto assignments = Assignment::parseAll(options.assignments);
    if (!assignments)
        return ExitCode::usage;

    StoreSession session(options);
    const auto preset = session.preset(options.name);
    if (options.forService)
        setForService(*preset);
    try {
        for (const Assignment &assignment : *assignments) {
            assignment.apply(*preset);
            if (const QString limitation = assignment.limitation(*preset); !limitation.isEmpty())
                complain(assignment.path() + ": "_L1 + limitation);
        }
        requireKept(*preset, *assignments);
    } catch (const AssignmentError &error) {
        throw Refusal(QString::fromUtf8(error.what()) + "; nothing was changed"_L1);
    }
    tellAdvice(*preset, fileInStore(options.name, options));
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
    command->add_option("FIELD=VALUE", options->assignments, "What to change");
    command->add_flag(
        "--for-service", options->forService,
        "First what YouTube or Facebook needs: protocol, port, and the host unless it is another's");
    command->callback([options, &chosen] {
        if (options->assignments.empty() && !options->forService)
            throw CLI::RequiredError("FIELD=VALUE or --for-service");
        chosen = [options](Output &out) { return guarded([&] { return set(*options, out); }); };
    });
}

} // namespace vantle::ctl
