// SPDX-License-Identifier: MIT
#include "apps/vantlectl/Assignments.h"

#include "apps/vantlectl/Output.h"
#include "apps/vantlectl/TextValue.h"

namespace vantle::ctl {

using namespace Qt::StringLiterals;

std::optional<QList<Assignment>> parseAssignments(const std::vector<std::string> &texts)
{
    QList<Assignment> assignments;
    for (const std::string &text : texts) {
        const auto assignment = Assignment::parse(QString::fromStdString(text));
        if (!assignment) {
            // Not repeated: "streamKey= key" is two words, and the second one a secret.
            complain(u"assignment %1 is none: not an assignment such as portNumber=1936 or "
                     "videoSettings.0.bitRate=6000"_s.arg(assignments.size() + 1));
            return std::nullopt;
        }
        assignments.append(*assignment);
    }
    return assignments;
}

QList<Assignment> withTextsRead(const QList<Assignment> &assignments)
{
    QList<Assignment> read;
    for (const Assignment &assignment : assignments) {
        try {
            read.append(assignment.takesText() ? assignment.withValue(textValue(assignment.value()))
                                               : assignment);
        } catch (const std::exception &error) {
            throw AssignmentError(assignment.path(), QString::fromUtf8(error.what()));
        }
    }
    return read;
}

void applyAll(const QList<Assignment> &assignments, VantlePreset &preset)
{
    for (const Assignment &assignment : assignments) {
        assignment.apply(preset);
        if (const QString limitation = assignment.limitation(preset); !limitation.isEmpty())
            complain(assignment.path() + ": "_L1 + limitation);
    }
}

} // namespace vantle::ctl
