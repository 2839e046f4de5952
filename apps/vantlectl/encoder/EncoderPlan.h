// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/encoder/Argument.h"

#include "VantlePresets/model/VantlePreset.h"

#include <optional>

namespace vantle::ctl {

/// What a preset is to be encoded from and where to.
struct EncoderRequest
{
    QString input; ///< a file or URL; "" for test pictures and tones with as many channels as it takes
    int inputChannels = 0;          ///< of the input's first audio stream; not used for the test input
    QString output;                 ///< in place of the preset's destination; "" for that one
    bool isPaced = true;            ///< reads the input in real time, as for a live stream
    std::optional<double> duration; ///< ends after so many seconds of media
};

/// The encoder's arguments, its own name first, or why there are none.
struct EncoderPlan
{
    Arguments arguments;  ///< empty when there are problems
    QStringList problems; ///< what encoder or container can't carry, as "videoSettings.1: <reason>"
    QStringList notes;    ///< what the stream will not say, though the preset does
};

/// Plans ffmpeg's command line for a preset. A pure function: looks at nothing but its arguments.
[[nodiscard]] EncoderPlan planEncoder(const VantlePreset &preset, const EncoderRequest &request);

} // namespace vantle::ctl
