// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/obs/Plan.h"

namespace vantle::ctl::obs {

/// A plan in the making.
struct PlanDraft
{
    const VantlePreset &preset;
    const Host &host;
    Plan plan;

    void refuse(const QString &field, const QString &reason) { add(plan.refusals, field, reason); }
    void differ(const QString &field, const QString &reason) { add(plan.differences, field, reason); }
    void note(const QString &field, const QString &reason) { add(plan.notes, field, reason); }
    void set(const QString &category, const QString &name, const QString &value)
    {
        plan.parameters.append({category, name, value});
    }

private:
    static void add(QStringList &lines, const QString &field, const QString &reason)
    {
        lines.append(field + QLatin1StringView(": ") + reason);
    }
};

// Each adds its part to the draft.

/// False for what OBS does not send at all.
bool planTarget(PlanDraft &draft);
void planVideo(PlanDraft &draft);
void planAudio(PlanDraft &draft);

} // namespace vantle::ctl::obs
