// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/encoder/Argument.h"
#include "VantlePresets/encoder/Container.h"
#include "VantlePresets/encoder/EncoderPlan.h"

namespace vantle::encoder {

/// A plan in the making, with what the parts of planning tell each other.
struct PlanDraft
{
    const VantlePreset &preset;
    const EncoderRequest &request;

    const Container *container = nullptr; ///< set by the destination, which is planned first
    Arguments input;
    QStringList filters;
    Arguments streams;
    Arguments destination;
    QStringList problems;
    QStringList notes;
    QString masterPlaylist; ///< the file, "" when there is none

    /// What ends with "-i" and the input. A live one keeps its own pace.
    void addInput(const Arguments &arguments, bool isLive = false)
    {
        if (request.isPaced() && !isLive)
            input.add({QStringLiteral("-re")});
        input.add(arguments);
    }

    /// The path is one that `vantlectl set` takes, or an option's name.
    void problem(const QString &path, const QString &reason)
    {
        problems.append(path + QLatin1StringView(": ") + reason);
    }
    void note(const QString &path, const QString &reason)
    {
        notes.append(path + QLatin1StringView(": ") + reason);
    }
};

/// "videoSettings.1.pid".
[[nodiscard]] inline QString fieldPath(QLatin1StringView list, qsizetype index,
                                       QLatin1StringView field = QLatin1StringView())
{
    const QString entry = list + u'.' + QString::number(index);
    return field.isEmpty() ? entry : entry + u'.' + field;
}

inline constexpr QLatin1StringView kUncheckedCertificate{
    "the encoder does not check the server's certificate"};

/// Of a preset with tracks, the one that players begin with: the document's first default one, else the
/// first.
[[nodiscard]] qsizetype defaultTrack(const VantlePreset &preset);

// Each adds its part to the draft.
void planInput(PlanDraft &draft);
void planDestination(PlanDraft &draft);
void planHls(PlanDraft &draft);
void planVideo(PlanDraft &draft);
void planAudio(PlanDraft &draft);

} // namespace vantle::encoder
