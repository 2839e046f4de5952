// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/model/VantlePreset.h"

#include <QtCore/QByteArray>

namespace vantle::encoder {

/// The text of a master playlist with what the encoder leaves out. One that is complete comes back as it is.
[[nodiscard]] QByteArray completedMaster(const VantlePreset &preset, const QByteArray &written);

} // namespace vantle::encoder
