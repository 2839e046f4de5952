// SPDX-License-Identifier: MIT
#include "apps/vantlectl/AdviceLines.h"
#include "apps/vantlectl/Command.h"
#include "apps/vantlectl/InputFile.h"
#include "apps/vantlectl/PresetText.h"
#include "apps/vantlectl/Table.h"

#include "VantlePresets/document/DocumentWriter.h"
#include "VantlePresets/model/PresetFactory.h"

#include <algorithm>
#include <optional>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

struct Options
{
    std::vector<std::string> paths;
    bool json = false;
    bool strict = false;
};

struct Result
{
    fs::path path;
    std::shared_ptr<VantlePreset> preset; ///< null when there is a failure
    std::optional<Failure> failure;
    QList<Advice> advice = {};
};

Result judge(const fs::path &path)
{
    try {
        return {path, readPresetArgument(path), {}, adviceOnFile(path)};
    } catch (const std::exception &error) {
        return {path, nullptr, Failure(error)};
    }
}

void printText(Output &out, const Result &result, qsizetype pathColumns)
{
    const QString path = padded(shown(result.path), pathColumns);
    if (result.failure)
        out.line("error  "_L1 + path + "  "_L1 + result.failure->message());
    else
        out.line("ok     "_L1 + path + "  "_L1 + padded(displayName(result.preset->type()), 8) + "  "_L1 +
                 countsOf(*result.preset));
    for (const Advice &advice : result.advice)
        out.line(shown(result.path) + ": "_L1 + adviceLine(advice));
}

void printJson(Output &out, const Result &result, qsizetype)
{
    out.bytes(document::encode(document::Format::compact, [&](document::DocumentWriter &writer) {
        writer.beginObject();
        writer.string("file", QString::fromStdString(result.path.native()));
        writer.boolean("ok", !result.failure);
        if (result.failure) {
            writer.string("place", result.failure->place);
            writer.string("error", result.failure->description);
        } else {
            writer.string("type", displayName(result.preset->type()));
            writer.integer("videoSettings", result.preset->videoSettings().size());
            writer.integer("audioSettings", result.preset->audioSettings().size());
            writeAdvice(writer, result.advice);
        }
        writer.endObject();
    }));
    out.line();
}

ExitCode validate(const Options &options, Output &out)
{
    const auto print = options.json ? printJson : printText;
    ExitCode code = ExitCode::good;
    std::vector<fs::path> files;
    for (const fs::path path : options.paths) {
        try {
            const std::vector<fs::path> inside = filesOfArgument(path);
            if (inside.empty())
                complain("no preset files in "_L1 + shown(path));
            files.insert(files.end(), inside.begin(), inside.end());
        } catch (const fs::filesystem_error &error) {
            print(out, {path, nullptr, Failure(std::system_error(error.code()))}, 0);
            code = ExitCode::failed;
        }
    }

    qsizetype pathColumns = 0;
    for (const fs::path &file : files)
        pathColumns = std::max(pathColumns, columnsOf(shown(file)));
    for (const fs::path &file : files) {
        const Result result = judge(file);
        print(out, result, pathColumns);
        if (result.failure || (options.strict && !result.advice.isEmpty()))
            code = ExitCode::failed;
    }
    return code;
}

} // namespace

void addValidateCommand(CLI::App &app, Command &chosen)
{
    CLI::App *const command = app.add_subcommand(
        "validate", "Check preset files: a line per file, and one for each piece of advice");
    const auto options = std::make_shared<Options>();
    command
        ->add_option("PATH", options->paths,
                     "Preset files, - for standard input, or folders with *.json files")
        ->required();
    command->add_flag("--json", options->json, "One JSON object per line");
    command->add_flag("--strict", options->strict, "Fail when there is advice, too");
    command->callback(
        [options, &chosen] { chosen = [options](Output &out) { return validate(*options, out); }; });
}

} // namespace vantle::ctl
