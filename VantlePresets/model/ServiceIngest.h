// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/model/RTMPVantlePreset.h"

#include <span>

namespace vantle {

/// A host to which a service lets streams be sent, and how.
struct ServiceIngest
{
    StreamingType type;
    QLatin1StringView host;
    RTMPVantlePreset::StreamingProtocol protocol; ///< what the host takes, and nothing else
    qint64 port;
    QLatin1StringView application;
    bool isBackup;            ///< takes the second of two identical streams
    bool isCurrent;           ///< one that the service hands out today
    QLatin1StringView source; ///< a key of adviceSources()
};

/// All public hosts of YouTube and Facebook. The first of a kind is the one of new presets.
[[nodiscard]] std::span<const ServiceIngest> serviceIngests();

// Each gives null when no row is meant, and for kinds that belong to no service.

/// The row of new presets.
[[nodiscard]] const ServiceIngest *firstIngestOf(StreamingType type);
/// The row of a host, of whatever kind; case does not count in host names.
[[nodiscard]] const ServiceIngest *ingestOfHost(const QString &host);
/// The row of a protocol.
[[nodiscard]] const ServiceIngest *ingestFor(StreamingType type, RTMPVantlePreset::StreamingProtocol protocol,
                                             bool isBackup);
/// The row that a stream is best sent to: with encryption, and as a backup where the service has one.
[[nodiscard]] const ServiceIngest *bestIngestOf(StreamingType type, bool isBackup);

} // namespace vantle
