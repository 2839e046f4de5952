// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/obs/RunningObs.h"

namespace vantle::ctl::obs {

/// Makes OBS what the plan says, in a profile of the preset's own, and reads every value back, because OBS
/// answers "done" to things that it does not do. Writes only what differs. When something fails, OBS gets the
/// profile back that it had. The plan has no refusals, and nothing is on air. True when something was
/// changed. Throws Error.
bool apply(Connection &connection, const RunningObs &obs, const Plan &plan, const QString &presetName);

} // namespace vantle::ctl::obs
