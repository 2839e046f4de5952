// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/obs/Connection.h"
#include "apps/vantlectl/obs/Plan.h"

#include <optional>

namespace vantle::ctl::obs {

/// The section of a profile that is ours, which OBS keeps and does not look at.
inline constexpr QLatin1StringView kOwnCategory{"Vantle"};
inline constexpr QLatin1StringView kPresetParameter{"Preset"}; ///< the preset's name
inline constexpr QLatin1StringView kAudioParameter{"Audio"};   ///< see PendingAudio

/// A profile's note that its audio format waits for OBS to be started again.
struct PendingAudio
{
    QString run; ///< of OBS, as serverRun() tells it
    AudioFormat running;

    /// "1234 48000 Stereo".
    [[nodiscard]] QString text() const;
    [[nodiscard]] static std::optional<PendingAudio> parse(const QString &text);
};

/// The format with which OBS runs: what its profile says, unless that was changed in the same run. OBS itself
/// tells no more than the profile's values.
[[nodiscard]] AudioFormat runningAudio(const AudioFormat &stored, const std::optional<PendingAudio> &pending,
                                       const QString &run);

/// Tells one run of a local OBS from another: the identifier and start time of the process that listens on
/// the port. "" when it can't be told: OBS runs as another user or on another machine.
[[nodiscard]] QString serverRun(quint16 port);

/// Whether another user's process listens on the port of this machine: it would be told the stream key. What
/// is behind a closed port, or in another network namespace, is not known to be another's.
[[nodiscard]] bool isAnothersServer(quint16 port);

/// What a running OBS says of itself.
struct RunningObs
{
    Host host;
    QString run; ///< see serverRun()
    QString profile;
    QStringList profiles;
    AudioFormat storedAudio; ///< of the current profile
};

[[nodiscard]] RunningObs lookAt(Connection &connection, const QString &run);

/// Throws Error when OBS streams, records or feeds a virtual camera. Profiles can be switched then, and what
/// is on air changes with them.
void refuseWhileActive(Connection &connection);

/// The value of the current profile, or OBS's default; "" when there is none.
[[nodiscard]] QString parameter(Connection &connection, const QString &category, const QString &name);

[[nodiscard]] AudioFormat storedAudio(Connection &connection);

} // namespace vantle::ctl::obs
