// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/model/VantlePreset.h"

#include <QtCore/QList>
#include <QtCore/QString>

#include <span>

namespace vantle::advice {

/// A service's bit rates for a size and rate, in kbit/s.
struct BitRateRow
{
    qint64 side;        ///< the shorter side of the largest picture that the row is for, in pixels
    bool isFast;        ///< for more than 30 frames per second
    qint64 recommended; ///< for H.264; 0 when only a range is given
    qint64 lowest;      ///< of the range for other codecs, or for all
    qint64 highest;
    QLatin1StringView source;

    /// What the service is known to take of H.264, and of the rest.
    [[nodiscard]] qint64 limit(bool isH264) const
    {
        return isH264 && recommended > highest ? recommended : highest;
    }
};

/// What a service asks of a stream, beyond its hosts (see ServiceIngest).
struct ServiceRules
{
    StreamingType type;
    QLatin1StringView name;
    QLatin1StringView domain;
    bool judgesOtherHosts; ///< its protocol and port hold whatever host is named
    QLatin1StringView protocolSource;

    double highestFrameRate;
    QLatin1StringView frameRateSource;
    bool takesHevc;
    QLatin1StringView codecSource;
    std::span<const BitRateRow> bitRates; ///< the largest size first

    QLatin1StringView audioSource; ///< for the number of tracks and their sample rates
    std::span<const qint64> sampleRates;
    std::span<const qsizetype> channels;
    QLatin1StringView channelsText;
    QLatin1StringView channelsSource;
    qint64 highestAudioBitRate; ///< of mono and stereo, in kbit/s
    QLatin1StringView audioBitRateSource;
    bool keyHoldsParameters; ///< so that "&" in a stream key is as it should be
};

/// The rules of the kind's service, else those of the service whose host an RTMP or Wowza preset names; null
/// when there is neither.
[[nodiscard]] const ServiceRules *rulesFor(const VantlePreset &preset);

/// The row for a picture; null when it is larger than all rows say.
[[nodiscard]] const BitRateRow *rowOf(const ServiceRules &rules, qint64 width, qint64 height,
                                      double frameRate);

} // namespace vantle::advice
