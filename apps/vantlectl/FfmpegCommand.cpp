// SPDX-License-Identifier: MIT
#include "apps/vantlectl/AdviceLines.h"
#include "apps/vantlectl/Assignments.h"
#include "apps/vantlectl/EncoderRun.h"
#include "apps/vantlectl/NamedPreset.h"

#include "VantlePresets/check/FolderLook.h"
#include "VantlePresets/core/Log.h"
#include "VantlePresets/document/DocumentWriter.h"

#include <utility>

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

EncoderRequest requestOf(const Options &options, const VantlePreset &preset)
{
    EncoderRequest request;
    request.setOutput(QString::fromStdString(options.output));
    request.setPaced(!options.fast);
    request.setDuration(options.duration);
    if (options.input == kTestInput)
        return request;
    request.setInput(QString::fromStdString(options.input));
    if (isLive(request.input()))
        request.setPaced(false);
    else if (!preset.audioSettings().isEmpty())
        request.setInputChannels(channelsOfInput(request.input()));
    return request;
}

void print(const QStringList &arguments, const Options &options, Output &out)
{
    if (!options.json) {
        out.line(shellLine(arguments));
        return;
    }
    out.bytes(document::encode(document::Format::compact, [&](document::DocumentWriter &writer) {
        writer.beginArray();
        for (const QString &text : arguments)
            writer.string(text);
        writer.endArray();
    }));
    out.line();
}

CLI::Validator durationCheck()
{
    return {[](const std::string &text) {
                bool isNumber = false;
                const double seconds = QString::fromStdString(text).toDouble(&isNumber);
                return isNumber && seconds > 0 && seconds <= kLongestRun
                           ? std::string()
                           : "\"" + text + "\" is not above 0 and at most " +
                                 std::to_string(static_cast<int>(kLongestRun)) + " seconds";
            },
            "SECONDS"};
}

bool readsStandardInput(const Options &options)
{
    return options.input == "-" || options.input == "pipe:" || options.input == "pipe:0";
}

/// What the parser can't say: a stream on standard input leaves none for a preset or a text.
const char *misuse(const Options &options)
{
    if (!readsStandardInput(options))
        return nullptr;
    if (options.preset == "-")
        return "standard input can't be both --input and the preset";
    const bool isText = std::any_of(options.assignments.begin(), options.assignments.end(),
                                    [](const std::string &text) { return text.ends_with("=@-"); });
    return isText ? "standard input can't be both --input and the text of \"@-\"; use @FILE" : nullptr;
}

/// The encoder's own words for a folder that it can't make are wrong ones.
void requireFolders(const VantlePreset &preset, const QString &masterPlaylist)
{
    const QString folder = masterPlaylist + "/.."_L1;
    QStringList folders{folder};
    for (qsizetype i = 0; i < preset.videoSettings().size(); ++i)
        folders.append(folder + "/video"_L1 + QString::number(i));
    for (qsizetype i = 0; i < preset.audioSettings().size(); ++i)
        folders.append(folder + "/audio"_L1 + QString::number(i));
    for (const QString &needed : std::as_const(folders)) {
        if (const QString fault = check::folderFault(needed); !fault.isEmpty())
            throw Refusal(escapedControls(fault) + "; --output names another folder"_L1);
    }
}

ExitCode ffmpeg(const Options &options, Output &out)
{
    if (const char *reason = misuse(options)) {
        complain(QString::fromUtf8(reason));
        return ExitCode::usage;
    }
    const auto assignments = parseAssignments(options.assignments, options.preset);
    if (!assignments)
        return ExitCode::usage;
    const auto preset = assignedPreset(options.preset, options, withTextsRead(*assignments));
    const EncoderPlan plan = planEncoder(*preset, requestOf(options, *preset));
    for (const QString &problem : plan.problems())
        complain(problem);
    tellAdvice(*preset, fileOfNamedPreset(options.preset, options));
    if (!plan.problems().isEmpty())
        return ExitCode::failed;
    for (const QString &note : plan.notes())
        remark("note: "_L1 + note);
    if (options.run && !plan.masterPlaylist().isEmpty())
        requireFolders(*preset, plan.masterPlaylist());
    if (options.run)
        return runEncoder(*preset, plan, readsStandardInput(options), options.json, out);
    if (!plan.masterPlaylist().isEmpty())
        remark(u"note: the encoder's own master playlist lacks track names and more, which --run adds"_s);
    print(options.reveal ? plan.arguments() : plan.maskedArguments(), options, out);
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
                     "A file, URL or -: its first video and audio stream; or test pictures and tones")
        ->capture_default_str();
    command->add_option("--output", options->output,
                        "A folder or http address for HLS, else an address, in place of the preset's");
    command->add_option("--duration", options->duration, "End after so many seconds of media")
        ->check(durationCheck());
    command->add_flag("--fast", options->fast, "Read the input as fast as it goes, not in real time");
    command->add_flag("--run", options->run, "Run it, and print its progress once a second");
    command->add_flag("--reveal", options->reveal, "Show the stream key and the password");
    command->callback([options, &chosen] {
        chosen = [options](Output &out) { return guarded([&] { return ffmpeg(*options, out); }); };
    });
}

} // namespace vantle::ctl
