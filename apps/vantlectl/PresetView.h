// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/model/VantlePreset.h"

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

namespace vantle::ctl {

/// A preset for people, as lines. Stream key and password, in the address too, are masked unless
/// revealed.
[[nodiscard]] QStringList presetAsText(const VantlePreset &preset, bool reveal);

/// A preset for machines, on one line: its name, then what its document keeps, as the document has it, then
/// what follows from it in the object "derived", where what can't be told is left out. Stream key and
/// password, in the address too, are masked unless revealed.
[[nodiscard]] QByteArray presetAsJson(const VantlePreset &preset, bool reveal);

} // namespace vantle::ctl
