// SPDX-License-Identifier: MIT
#include "apps/vantlectl/Assignments.h"
#include "apps/vantlectl/CheckStepJson.h"
#include "apps/vantlectl/NamedPreset.h"
#include "apps/vantlectl/Table.h"

#include <QtCore/QEventLoop>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

struct Options : StoreOptions
{
    std::string preset;
    std::vector<std::string> assignments;
    std::string output;
    std::string authorityFile;
    double limit = 5;
};

void printAsJson(const CheckStep &step, Output &out)
{
    out.bytes(document::encode(document::Format::compact,
                               [&](document::DocumentWriter &writer) { writeStep(writer, step); }));
    out.line();
}

/// In columns of their own width, since a line is printed before the next step begins.
void print(const CheckStep &step, Output &out)
{
    constexpr qsizetype kName = 14;
    constexpr qsizetype kOutcome = 6;
    constexpr qsizetype kTime = 8;
    out.line(padded(step.name, kName) + "  "_L1 + padded(checkOutcomes().text(step.outcome), kOutcome) +
             "  "_L1 + padded(QString::number(step.time.count()) + " ms"_L1, kTime, Side::right) + "  "_L1 +
             step.text);
}

ExitCode check(const Options &options, Output &out)
{
    const auto assignments = parseAssignments(options.assignments, options.preset);
    if (!assignments)
        return ExitCode::usage;
    const auto preset = assignedPreset(options.preset, options, withTextsRead(*assignments));
    CheckOptions how;
    how.output = QString::fromStdString(options.output);
    how.authorityFile = QString::fromStdString(options.authorityFile);
    how.limit =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::duration<double>(options.limit));

    silenceSrtLog();
    ConnectionCheck check(*preset, how);
    QEventLoop loop;
    std::exception_ptr failure;
    QObject::connect(&check, &ConnectionCheck::stepFinished, &loop, [&](const CheckStep &step) {
        // Exceptions can't pass through the event loop.
        try {
            if (options.json)
                printAsJson(step, out);
            else
                print(step, out);
            out.flush();
        } catch (...) {
            failure = std::current_exception();
            check.cancel();
            loop.quit();
        }
    });
    QObject::connect(&check, &ConnectionCheck::finished, &loop, [&](bool isGood) {
        loop.exit(static_cast<int>(isGood ? ExitCode::good : ExitCode::failed));
    });
    check.start();
    const int code = loop.exec();
    if (failure)
        std::rethrow_exception(failure);
    return static_cast<ExitCode>(code);
}

} // namespace

void addCheckCommand(CLI::App &app, Command &chosen)
{
    CLI::App *const command =
        app.add_subcommand("check", "Ask a preset's server, before air, whether it is there");
    command->footer(
        "Look-up, TCP, TLS with certificate and host name, and what the protocol says first; nothing is\n"
        "published. An SRT listener that serves one caller is taken for that moment. Assignments are\n"
        "those of `set` and hold for this command only: an SRT passphrase is given with streamKey=@-.");
    const auto options = std::make_shared<Options>();
    options->addTo(*command);
    command->add_option("PRESET", options->preset, kPresetArgumentHelp)->required();
    command->add_option("FIELD=VALUE", options->assignments, "Changes for this command only");
    command->add_option("--output", options->output,
                        "A folder or http address for HLS, else an address, in place of the preset's");
    command->add_option("--ca-file", options->authorityFile, "Trust the certificates of this PEM file, too");
    constexpr double kHour = 3600;
    command->add_option("--limit", options->limit, "Seconds that each step may take")
        ->capture_default_str()
        ->check(CLI::Range(0.001, kHour));
    command->callback([options, &chosen] {
        chosen = [options](Output &out) { return guarded([&] { return check(*options, out); }); };
    });
}

} // namespace vantle::ctl
