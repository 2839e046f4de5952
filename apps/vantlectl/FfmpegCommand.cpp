// SPDX-License-Identifier: MIT
#include "apps/vantlectl/AdviceLines.h"
#include "apps/vantlectl/Assignments.h"
#include "apps/vantlectl/NamedPreset.h"
#include "apps/vantlectl/encoder/EncoderPlan.h"
#include "apps/vantlectl/encoder/EncoderRun.h"

#include "VantlePresets/document/DocumentWriter.h"

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

constexpr auto kTestInput = "test";

struct Options : StoreOptions
{
    std::string preset;
    std::vector<std::string> assignments;
    std::string input = kTestInput;
    std::string output;
    std::optional<double> duration;
    bool run = false;
    bool reveal = false;
    bool fast = false;
};

/// The preset with the assignments, which hold for this command only.
std::shared_ptr<VantlePreset> assignedPreset(const Options &options, const QList<Assignment> &assignments)
{
    auto preset = namedPreset(options.preset, options);
    try {
        applyAll(withTextsRead(assignments), *preset);
    } catch (const AssignmentError &error) {
        throw Refusal(QString::fromUtf8(error.what()));
    }
    return preset;
}

EncoderRequest requestOf(const Options &options, const VantlePreset &preset)
{
    EncoderRequest request;
    request.output = QString::fromStdString(options.output);
    request.isPaced = !options.fast;
    request.duration = options.duration;
    if (options.input == kTestInput)
        return request;
    request.input = QString::fromStdString(options.input);
    if (!preset.audioSettings().isEmpty())
        request.inputChannels = channelsOfInput(request.input);
    return request;
}

void print(const Arguments &arguments, const Options &options, Output &out)
{
    if (!options.json) {
        out.line(arguments.shellLine(options.reveal));
        return;
    }
    out.bytes(document::encode(document::Format::compact, [&](document::DocumentWriter &writer) {
        writer.beginArray();
        for (const QString &text : arguments.texts(options.reveal))
            writer.string(text);
        writer.endArray();
    }));
    out.line();
}

ExitCode ffmpeg(const Options &options, Output &out)
{
    const auto assignments = parseAssignments(options.assignments, options.preset);
    if (!assignments)
        return ExitCode::usage;
    const auto preset = assignedPreset(options, *assignments);
    const EncoderPlan plan = planEncoder(*preset, requestOf(options, *preset));
    for (const QString &problem : plan.problems)
        complain(problem);
    tellAdvice(*preset, fileOfNamedPreset(options.preset, options));
    if (!plan.problems.isEmpty())
        return ExitCode::failed;
    for (const QString &note : plan.notes)
        complain("note: "_L1 + note);
    if (options.run)
        return runEncoder(plan.arguments, options.json, out);
    print(plan.arguments, options, out);
    return ExitCode::good;
}

} // namespace

void addFfmpegCommand(CLI::App &app, Command &chosen)
{
    CLI::App *const command =
        app.add_subcommand("ffmpeg", "Print, or run, the encoder's command line for a preset");
    command->footer(
        "What ffmpeg or the container can't carry is said first, a line per field, and ends the command\n"
        "with 1. Assignments are those of `set` and hold for this command only: RTMP, Wowza and SRT\n"
        "files keep no stream key, so give it with streamKey=@- or streamKey=@FILE.");
    const auto options = std::make_shared<Options>();
    options->addTo(*command);
    command->add_option("PRESET", options->preset, kPresetArgumentHelp)->required();
    command->add_option("FIELD=VALUE", options->assignments, "Changes for this command only");
    command
        ->add_option("--input", options->input,
                     "A file or URL: its first video and audio stream; or test pictures and tones")
        ->capture_default_str();
    command->add_option("--output", options->output,
                        "A folder or http address for HLS, else an address, in place of the preset's");
    command->add_option("--duration", options->duration, "End after so many seconds of media")
        ->check(CLI::PositiveNumber);
    command->add_flag("--fast", options->fast, "Read the input as fast as it goes, not in real time");
    command->add_flag("--run", options->run, "Run it, and print its progress once a second");
    command->add_flag("--reveal", options->reveal, "Show the stream key and the password");
    command->callback([options, &chosen] {
        chosen = [options](Output &out) { return guarded([&] { return ffmpeg(*options, out); }); };
    });
}

} // namespace vantle::ctl
