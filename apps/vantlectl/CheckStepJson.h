// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/check/ConnectionCheck.h"
#include "VantlePresets/document/DocumentWriter.h"

namespace vantle::ctl {

/// Writes the step as an object, as `check --json` prints it and `serve` sends it.
inline void writeStep(document::DocumentWriter &writer, const CheckStep &step)
{
    writer.beginObject();
    writer.string("step", step.name);
    writer.string("outcome", checkOutcomes().text(step.outcome));
    writer.integer("milliseconds", step.time.count());
    writer.string("text", step.text);
    writer.endObject();
}

} // namespace vantle::ctl
