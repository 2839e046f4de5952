// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QList>
#include <QtCore/QString>

namespace vantle {

class VideoSettings;

/// What a form says under one of its fields.
struct FieldHint
{
    QString field; ///< the property's name
    QString text;  ///< one sentence for the user
};

/// What the model itself knows: a profile that does not fit, with one that would, a bit rate above the
/// profile's limit.
[[nodiscard]] QList<FieldHint> hintsFor(const VideoSettings &settings);

/// Empty for a packet identifier that a transport stream can give to a stream: 16 to 8190 (ISO/IEC 13818-1,
/// table 2-3, reserves those below, and 8191 is the null packet's).
[[nodiscard]] QString pidHint(qint64 pid);
/// Empty for a TCP or UDP port.
[[nodiscard]] QString portHint(qint64 port);

/// The profiles that suit the rendition; none when its size and rate are beyond computing.
[[nodiscard]] QStringList fittingProfiles(const VideoSettings &settings);

} // namespace vantle
