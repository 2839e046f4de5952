// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/model/Assignment.h"

#include <string>
#include <vector>

namespace vantle::ctl {

/// All assignments of a command line; complains and gives nothing when one has none of their forms, or when
/// standard input is to be more than one text: of assignments, or of the preset, whose argument may be "-".
[[nodiscard]] std::optional<QList<Assignment>> parseAssignments(const std::vector<std::string> &texts,
                                                                const std::string &preset = {});

/// The assignments with the texts that @FILE and @- stand for (see TextValue.h). Throws AssignmentError.
[[nodiscard]] QList<Assignment> withTextsRead(const QList<Assignment> &assignments);

/// The assignment that can't be carried out, and its position among the others.
struct FailedAssignment : AssignmentError
{
    FailedAssignment(const AssignmentError &error, qsizetype number)
        : AssignmentError(error), position(number)
    {
    }

    qsizetype position;
};

/// Carries them out in their order; a line for each value that was limited: bit rates by the profile that is
/// there in the end. Throws FailedAssignment at the first that can't be.
[[nodiscard]] QStringList applyAll(const QList<Assignment> &assignments, VantlePreset &preset);

/// The same, complaining of what was limited.
void applyAndTell(const QList<Assignment> &assignments, VantlePreset &preset);

} // namespace vantle::ctl
