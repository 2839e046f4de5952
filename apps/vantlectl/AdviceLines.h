// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/StoreSession.h"

#include "VantlePresets/advice/Advice.h"

#include <filesystem>

namespace vantle::document {
class DocumentWriter;
} // namespace vantle::document

namespace vantle::ctl {

/// "warning: videoSettings[1].bitRate: <text>".
[[nodiscard]] QString adviceLine(const Advice &advice);

/// On a preset file that could be read a moment ago; nothing when it can't be any more.
[[nodiscard]] QList<Advice> adviceOnFile(const std::filesystem::path &file);

/// On a preset, and what its file alone tells; the preset may have been changed since it was read.
[[nodiscard]] QList<Advice> adviceOn(const VantlePreset &preset, const std::filesystem::path &file);

/// Writes the member "advice", an array of objects.
void writeAdvice(document::DocumentWriter &writer, const QList<Advice> &advice);

/// Remarks each piece of adviceOn().
void tellAdvice(const VantlePreset &preset, const std::filesystem::path &file);
/// Remarks each piece of advice on what a preset is after its import; the lines name the file.
void tellAdviceOnImport(const VantlePreset &preset, const std::filesystem::path &file);

/// Gives a preset what its service needs; throws Refusal when its kind belongs to none.
void setForService(VantlePreset &preset);

} // namespace vantle::ctl
