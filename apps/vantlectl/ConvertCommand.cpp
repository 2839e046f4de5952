// SPDX-License-Identifier: MIT
#include "apps/vantlectl/Command.h"
#include "apps/vantlectl/InputFile.h"
#include "apps/vantlectl/OutputFile.h"
#include "apps/vantlectl/PresetText.h"

#include "VantlePresets/model/VantlePreset.h"

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

struct Options
{
    std::string source;
    std::string target;
};

ExitCode convert(const Options &options, Output &out)
{
    fs::path concerned = options.source;
    try {
        const auto preset = readPresetArgument(concerned);
        const QByteArray document = preset->encoded(document::Format::pretty);
        concerned = options.target;
        const OutputFile file(concerned);
        file.writeCopy(document, options.source, out);
        if (file.isReplaced())
            out.line("wrote "_L1 + shown(concerned) + "  "_L1 + displayName(preset->type()) + "  "_L1 +
                     countsOf(*preset));
        return ExitCode::good;
    } catch (const OutputError &) {
        throw;
    } catch (const std::exception &error) {
        complain(shown(concerned) + ": "_L1 + Failure(error).message());
        return ExitCode::failed;
    }
}

} // namespace

void addConvertCommand(CLI::App &app, Command &chosen)
{
    CLI::App *const command = app.add_subcommand("convert", "Read a preset and write it pretty-printed");
    const auto options = std::make_shared<Options>();
    command->add_option("FILE", options->source, "The preset file to read, or - for standard input")
        ->required();
    command
        ->add_option("OUT", options->target,
                     "The file to write, or - for standard output; one that exists is replaced whole")
        ->required();
    command->callback(
        [options, &chosen] { chosen = [options](Output &out) { return convert(*options, out); }; });
}

} // namespace vantle::ctl
