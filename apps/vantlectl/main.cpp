// SPDX-License-Identifier: MIT
#include "apps/vantlectl/Command.h"

#include "VantlePresets/core/Log.h"

#include <QtCore/QCoreApplication>

#include <clocale>
#include <csignal>
#include <sstream>

namespace {

using namespace vantle;
using namespace vantle::ctl;
using namespace Qt::StringLiterals;

/// Prints what the parser has to say: help and version as output, everything else as a complaint.
ExitCode explain(const CLI::App &app, const CLI::ParseError &error, Output &out)
{
    std::ostringstream help;
    std::ostringstream complaint;
    const bool isError = app.exit(error, help, complaint) != 0;
    if (isError)
        complain(QString::fromStdString(complaint.str()).trimmed());
    out.bytes(help.str());
    out.flush();
    return isError ? ExitCode::usage : ExitCode::good;
}

ExitCode run(int argc, char **argv)
{
    CLI::App app("Streaming presets from the command line: their files, and the live store of this machine.",
                 "vantlectl");
    app.set_version_flag("--version", "vantlectl " VANTLE_VERSION);
    app.require_subcommand(1);
    Command chosen;
    addValidateCommand(app, chosen);
    addShowCommand(app, chosen);
    addConvertCommand(app, chosen);
    addFfmpegCommand(app, chosen);
    addListCommand(app, chosen);
    addEditCommands(app, chosen);
    addSetCommand(app, chosen);
    addTransferCommands(app, chosen);
    addWatchCommand(app, chosen);

    Output out;
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return explain(app, error, out);
    }
    const ExitCode code = chosen(out);
    out.flush();
    return code;
}

} // namespace

int main(int argc, char **argv)
{
    // The width of characters depends on the locale; texts are UTF-8 in every one.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    std::signal(SIGPIPE, SIG_IGN);
    const QCoreApplication application(argc, argv);
    setLogSink([](const QString &line) { complain(line); });
    ExitCode code = ExitCode::failed;
    try {
        code = run(argc, argv);
    } catch (const OutputError &error) {
        complain("can't write the output: "_L1 + QString::fromUtf8(error.what()));
    } catch (const std::exception &error) {
        complain(QString::fromUtf8(error.what()));
    }
    return static_cast<int>(code);
}
