// SPDX-License-Identifier: MIT
#include "apps/vantlectl/Assignments.h"

#include "apps/vantlectl/InputFile.h"
#include "apps/vantlectl/Output.h"
#include "apps/vantlectl/TextValue.h"

#include <algorithm>

namespace vantle::ctl {

using namespace Qt::StringLiterals;

namespace {

/// The rendition whose bit rate is assigned; null for anything else that is.
std::shared_ptr<VideoSettings> renditionOfBitRate(const Assignment &assignment, const VantlePreset &preset)
{
    const QStringList parts = assignment.path().split(u'.');
    if (parts.size() != 3 || parts.first() != "videoSettings"_L1 || parts.last() != "bitRate"_L1)
        return nullptr;
    return preset.videoSettings().value(parts[1].toInt());
}

void noteLimitation(QStringList &limitations, const Assignment &assignment, const VantlePreset &preset)
{
    if (const QString limitation = assignment.limitation(preset); !limitation.isEmpty())
        limitations.append(assignment.path() + ": "_L1 + limitation);
}

} // namespace

std::optional<QList<Assignment>> parseAssignments(const std::vector<std::string> &texts,
                                                  const std::string &preset)
{
    QList<Assignment> assignments;
    int inputs = preset == kStandardStream ? 1 : 0;
    for (const std::string &text : texts) {
        if (!QByteArrayView(text).isValidUtf8()) {
            complain(u"argument %1 is no UTF-8"_s.arg(assignments.size() + 1));
            return std::nullopt;
        }
        const auto assignment = Assignment::parse(QString::fromStdString(text));
        if (!assignment) {
            // Not repeated: "streamKey= key" is two words, and the second one a secret.
            complain(u"argument %1 is not an assignment such as portNumber=1936 or "
                     "videoSettings.0.bitRate=6000"_s.arg(assignments.size() + 1));
            return std::nullopt;
        }
        if (assignment->takesText() && assignment->value() == kStandardInputText && ++inputs > 1) {
            complain(assignment->path() + ": standard input is read for something else already"_L1);
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

QStringList applyAll(const QList<Assignment> &assignments, VantlePreset &preset)
{
    QStringList limitations;
    // A bit rate is limited by the profile, which may yet be assigned.
    QList<std::pair<std::shared_ptr<VideoSettings>, QString>> bitRates;
    for (qsizetype i = 0; i < assignments.size(); ++i) {
        const Assignment &assignment = assignments[i];
        try {
            assignment.apply(preset);
        } catch (const AssignmentError &error) {
            throw FailedAssignment(error, i);
        }
        if (const auto rendition = renditionOfBitRate(assignment, preset)) {
            bitRates.removeIf([&](const auto &earlier) { return earlier.first == rendition; });
            bitRates.append({rendition, assignment.value()});
        } else {
            noteLimitation(limitations, assignment, preset);
        }
    }
    const VideoSettingsList renditions = preset.videoSettings();
    for (const auto &[rendition, bitRate] : bitRates) {
        const qsizetype position = renditions.indexOf(rendition);
        if (position < 0)
            continue; // removed by a later assignment
        const auto assignment =
            Assignment::parse(u"videoSettings.%1.bitRate=%2"_s.arg(QString::number(position), bitRate));
        assignment->apply(preset);
        noteLimitation(limitations, *assignment, preset);
    }
    return limitations;
}

void applyAndTell(const QList<Assignment> &assignments, VantlePreset &preset)
{
    for (const QString &limitation : applyAll(assignments, preset))
        complain(limitation);
}

} // namespace vantle::ctl
