// SPDX-License-Identifier: MIT
#include "apps/vantlectl/serve/Methods.h"

#include "apps/vantlectl/Assignments.h"
#include "apps/vantlectl/PresetNames.h"

#include "VantlePresets/core/EnumerationTable.h"
#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/store/NameRules.h"

#include <array>

namespace vantle::ctl {

using namespace Qt::StringLiterals;

std::span<const Method> storeMethods()
{
    static constexpr std::array kMethods{
        Method{"list", listPresets},
        Method{"get", getPreset},
        Method{"set", setPreset},
        Method{"add", addPreset},
        Method{"duplicate", duplicatePreset},
        Method{"rename", renamePreset},
        Method{"remove", removePreset},
        Method{"import", importPresets},
        Method{"export", exportPreset},
        Method{"advice", advise},
        Method{"plan", planPreset},
        Method{"fields", listFields},
    };
    return kMethods;
}

StreamingType kindOf(const QString &label)
{
    if (const auto type = streamingTypes().fromText(label))
        return *type;
    throw ServeError(ErrorCode::invalidParams, "no kind of preset: "_L1 + label,
                     ObjectText().text("parameter", u"kind"_s).texts("choices", streamingTypes().texts()));
}

QString freeName(ServedStore &store, const QString &name)
{
    const QString trimmed = trimmedName(name);
    requireUsable(trimmed, store.manager().presetWithName(trimmed) != nullptr);
    return trimmed;
}

void requireUsable(const QString &name, bool isTaken)
{
    const QString reason = isTaken ? u"a preset or a file has the name"_s : nameFault(name);
    if (!reason.isEmpty())
        throw ServeError(ErrorCode::invalidName, u"This name is invalid or already taken."_s,
                         ObjectText().text("name", name).flag("isTaken", isTaken).text("reason", reason));
}

std::shared_ptr<VantlePreset> presetOfDocument(const QByteArray &document)
{
    try {
        return decodePreset(document);
    } catch (const DecodingError &error) {
        throw ServeError(ErrorCode::invalidDocument, error.message(),
                         ObjectText().text("place", error.place()).text("reason", error.description()));
    }
}

std::shared_ptr<VantlePreset> copyOf(const VantlePreset &preset)
{
    auto copy = decodePreset(preset.encoded(document::Format::compact));
    copy->setName(preset.name());
    return copy;
}

QList<Assignment> assignmentsOf(const QStringList &texts)
{
    QList<Assignment> assignments;
    for (const QString &text : texts) {
        const auto assignment = Assignment::parse(text);
        if (!assignment) // not repeated: it may hold a secret
            throw ServeError(ErrorCode::invalidValue,
                             u"assignment %1 is not of the form FIELD=VALUE, such as portNumber=1936"_s.arg(
                                 assignments.size() + 1),
                             ObjectText().number("assignment", assignments.size()));
        assignments.append(*assignment);
    }
    return assignments;
}

QStringList applyAssignments(const QList<Assignment> &assignments, VantlePreset &preset)
{
    try {
        return applyAll(assignments, preset);
    } catch (const FailedAssignment &failed) {
        throw ServeError(ErrorCode::invalidValue, QString::fromUtf8(failed.what()),
                         ObjectText()
                             .number("assignment", failed.position)
                             .text("field", assignments[failed.position].path()));
    }
}

} // namespace vantle::ctl
