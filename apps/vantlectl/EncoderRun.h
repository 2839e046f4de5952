// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/Command.h"

#include "VantlePresets/encoder/EncoderPlan.h"

namespace vantle::ctl {

/// The longest run that can be asked for, in seconds: a year.
inline constexpr double kLongestRun = 365.0 * 24 * 3600;

/// Whether the input gives what it has once only: standard input, a live stream's URL, a pipe or a device.
[[nodiscard]] bool isLive(const QString &input);

/// How many channels a file's or URL's first audio stream has, 0 when there is none. Throws Refusal.
[[nodiscard]] int channelsOfInput(const QString &input);

/// Runs a preset's encoder to its end and prints its progress, once a second. What it has to say goes to
/// standard error, with secrets masked. It gets this process's standard input, or none. The master playlist
/// of an HLS folder is completed. SIGINT and SIGTERM end it as it ends by itself, with its files complete,
/// and are no failure; a second one, or 10 seconds, kill it. Throws Refusal when it can't be started.
[[nodiscard]] ExitCode runEncoder(const VantlePreset &preset, const EncoderPlan &plan, bool readsInput,
                                  bool json, Output &out);

} // namespace vantle::ctl
