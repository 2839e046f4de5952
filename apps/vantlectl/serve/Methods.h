// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/serve/ServedStore.h"

#include "VantlePresets/model/Assignment.h"

#include <span>

namespace vantle::ctl {

/// A method of the store: takes the parameters by name, and gives the result as JSON text or throws
/// ServeError.
struct Method
{
    const char *name;
    QByteArray (*run)(ServedStore &store, Params &params);
};

/// All of them; docs/serve.md describes each.
[[nodiscard]] std::span<const Method> storeMethods();

// @{ Those that look.
QByteArray listPresets(ServedStore &store, Params &params);
QByteArray getPreset(ServedStore &store, Params &params);
QByteArray listFields(ServedStore &store, Params &params);
QByteArray advise(ServedStore &store, Params &params);
QByteArray planPreset(ServedStore &store, Params &params);
// @}
// @{ Those that change presets and the list.
QByteArray setPreset(ServedStore &store, Params &params);
QByteArray addPreset(ServedStore &store, Params &params);
QByteArray duplicatePreset(ServedStore &store, Params &params);
QByteArray renamePreset(ServedStore &store, Params &params);
QByteArray removePreset(ServedStore &store, Params &params);
// @}
// @{ Those with files of the caller's.
QByteArray importPresets(ServedStore &store, Params &params);
QByteArray exportPreset(ServedStore &store, Params &params);
// @}

/// Lists a new preset and has it on disk under its very name; takes it back and throws when it can't be.
void addToStore(ServedStore &store, const std::shared_ptr<VantlePreset> &preset);
/// The name trimmed; throws invalidName as requireUsable() does.
[[nodiscard]] QString freeName(ServedStore &store, const QString &name);
/// Throws invalidName for a trimmed name with a fault (see nameFault()), or that a preset has.
void requireUsable(const QString &name, bool isTaken);
/// Reads a document of a request; throws invalidDocument.
[[nodiscard]] std::shared_ptr<VantlePreset> presetOfDocument(const QByteArray &document);
/// The kind of a label; throws invalidParams.
[[nodiscard]] StreamingType kindOf(const QString &label);
/// Assignments as `vantlectl set` takes them, but for those from files; throws invalidValue.
[[nodiscard]] QList<Assignment> assignmentsOf(const QStringList &texts);
/// Carries them out as `vantlectl set` does; a line for each value that was limited. Throws invalidValue at
/// the first that can't be.
[[nodiscard]] QStringList applyAssignments(const QList<Assignment> &assignments, VantlePreset &preset);
/// A preset of its own with what the other's document keeps, and its name.
[[nodiscard]] std::shared_ptr<VantlePreset> copyOf(const VantlePreset &preset);

} // namespace vantle::ctl
