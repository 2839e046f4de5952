// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/Command.h"

#include "VantlePresets/encoder/EncoderPlan.h"

namespace vantle::ctl {

/// How many channels a file's or URL's first audio stream has, 0 when there is none. Throws Refusal.
[[nodiscard]] int channelsOfInput(const QString &input);

/// Runs an encoder to its end and prints its progress, once a second. What it has to say goes to standard
/// error, with secrets masked. SIGINT and SIGTERM end it as it ends by itself, with its files complete, and
/// are no failure; a second one kills it. Throws Refusal when it can't be started.
[[nodiscard]] ExitCode runEncoder(const EncoderPlan &plan, bool json, Output &out);

} // namespace vantle::ctl
