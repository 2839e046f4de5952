// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/encoder/PlanDraft.h"

#include <QtCore/QMap>

namespace vantle::encoder {

/// What an SRT connection is made with, by the table's names; values as ffmpeg's options take them.
using SrtValues = QMap<QString, QString>;

inline constexpr QLatin1StringView kSrtPassphrase{"passphrase"};
inline constexpr QLatin1StringView kSrtKeyLength{"pbkeylen"};
inline constexpr QLatin1StringView kSrtLatency{"latency"};
inline constexpr QLatin1StringView kSrtLinger{"linger"};
inline constexpr QLatin1StringView kSrtMode{"mode"};
inline constexpr QLatin1StringView kSrtPacketSize{"pkt_size"};
inline constexpr QLatin1StringView kSrtStreamIdentifier{"streamid"};

/// Takes a value for people, such as milliseconds, over; a problem of the field when it can't be.
void setSrtValue(PlanDraft &draft, const QString &field, SrtValues &values, const QString &name,
                 const QString &text);

/// Takes all of an address's parameters over, under any of their usual names. The encoder's own reader of
/// addresses decodes no escapes, reads "+" as a blank, and is silent about names that it does not know.
VANTLE_PRESETS_EXPORT void setSrtParameters(PlanDraft &draft, const QString &field, SrtValues &values,
                                            const QString &query);

/// Checks that host and mode go together.
void checkSrtHost(PlanDraft &draft, const QString &field, const SrtValues &values, const QString &host);

/// The options, with passphrase and stream identifier secret. (The latter can hold a login.)
[[nodiscard]] Arguments srtOptions(const SrtValues &values);

} // namespace vantle::encoder
