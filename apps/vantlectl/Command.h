// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/Output.h"

#include <CLI/CLI.hpp>

#include <functional>

namespace vantle::ctl {

/// What the process reports to its caller.
enum class ExitCode : int {
    good = 0,
    failed = 1, ///< refused, not a preset, or something could not be read or written
    usage = 2,  ///< the command line makes no sense
};

/// The command that the command line asked for, to be run when all of it was understood.
using Command = std::function<ExitCode(Output &out)>;

// Each adds one subcommand, which sets `chosen` when it is the one asked for.
void addValidateCommand(CLI::App &app, Command &chosen);
void addShowCommand(CLI::App &app, Command &chosen);
void addConvertCommand(CLI::App &app, Command &chosen);
void addFfmpegCommand(CLI::App &app, Command &chosen);
void addCheckCommand(CLI::App &app, Command &chosen);
void addObsCommand(CLI::App &app, Command &chosen);
void addListCommand(CLI::App &app, Command &chosen);
void addEditCommands(CLI::App &app, Command &chosen);
void addSetCommand(CLI::App &app, Command &chosen);
void addFieldCommands(CLI::App &app, Command &chosen);
void addTransferCommands(CLI::App &app, Command &chosen);
void addWatchCommand(CLI::App &app, Command &chosen);
void addServeCommand(CLI::App &app, Command &chosen);

/// Accepts the labels of the six kinds.
[[nodiscard]] CLI::Validator kindLabel();

} // namespace vantle::ctl
