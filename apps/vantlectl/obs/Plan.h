// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/model/VantlePreset.h"

#include <QtCore/QJsonObject>
#include <QtCore/QSize>
#include <QtCore/QVersionNumber>

namespace vantle::ctl::obs {

/// What all of OBS's audio is mixed to. It is read when OBS starts.
struct AudioFormat
{
    qint64 sampleRate = 48000; ///< in Hz
    QString channelSetup;      ///< as OBS names it: "Stereo"

    friend bool operator==(const AudioFormat &, const AudioFormat &) = default;
};

/// What an OBS is like before a preset is applied to it.
struct Host
{
    QVersionNumber version;
    QSize canvas;      ///< in pixels, on which the scenes are laid out
    AudioFormat audio; ///< with which it runs
};

/// One value of an OBS profile.
struct Parameter
{
    QString category;
    QString name;
    QString value;
};

/// The size and rate in which OBS sends its canvas.
struct Picture
{
    QSize size; ///< in pixels
    int rateNumerator = 0;
    int rateDenominator = 1;

    friend bool operator==(const Picture &, const Picture &) = default;
};

/// What a preset becomes in OBS, and what OBS can't make of it. The lines name fields as `set` takes them,
/// and hold no secrets.
struct Plan
{
    QString profile;             ///< of its own for each preset
    QList<Parameter> parameters; ///< OBS's simple output mode with x264
    Picture picture;
    QJsonObject service; ///< settings of the stream service "rtmp_custom", all of them; holds secrets
    AudioFormat audio;
    bool needsRestart = false; ///< OBS takes the audio format at its next start only

    QStringList refusals;    ///< why nothing of it can be applied
    QStringList differences; ///< where OBS would send something else than the preset says
    QStringList notes;       ///< what the stream will not say, though the preset does
    QStringList secrets;     ///< texts that must not be shown
};

/// Plans a preset for an OBS. A pure function: looks at nothing but its arguments.
[[nodiscard]] Plan planFor(const VantlePreset &preset, const Host &host);

/// The profile for a preset's name: names that differ get profiles that differ. OBS takes any name and makes
/// a folder's from it, so that the profile's has letters, digits and blanks of ASCII only.
[[nodiscard]] QString profileName(const QString &presetName);

} // namespace vantle::ctl::obs
