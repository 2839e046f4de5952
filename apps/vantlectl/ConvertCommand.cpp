// SPDX-License-Identifier: MIT
#include "apps/vantlectl/Command.h"
#include "apps/vantlectl/PresetText.h"

#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/model/PresetFactory.h"

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

struct Options
{
    std::string source;
    std::string target;
};

/// Replacing /dev/stdout or a FIFO would take it away from others.
void requireFile(const fs::path &target)
{
    std::error_code ignored;
    const fs::file_status status = fs::status(target, ignored);
    if (fs::is_directory(status))
        throw std::system_error(std::make_error_code(std::errc::is_a_directory));
    if (fs::exists(status) && !fs::is_regular_file(status))
        throw std::system_error(make_error_code(FileFault::notRegular));
}

ExitCode convert(const Options &options, Output &out)
{
    fs::path concerned = options.source;
    try {
        const auto preset = readPresetFile(concerned);
        const QByteArray document = preset->encoded(document::Format::pretty);
        concerned = options.target;
        requireFile(concerned);
        StagedFile file(concerned, document);
        file.commit();
        file.syncFolder();
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
    command->add_option("FILE", options->source, "The preset file to read")->required();
    command->add_option("OUT", options->target, "The file to write; one that exists is replaced whole")
        ->required();
    command->callback(
        [options, &chosen] { chosen = [options](Output &out) { return convert(*options, out); }; });
}

} // namespace vantle::ctl
