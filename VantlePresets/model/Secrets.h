// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/document/DocumentError.h"
#include "VantlePresets/model/VantlePreset.h"

namespace vantle {

/// A secret for showing: "********" for any that is not empty, whatever its length. Callable from any thread.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString masked(const QString &secret);

/// The field's value of a preset as text for people: secrets and what is secret in addresses are masked. A
/// choice is its display string, a boolean "true" or "false". On the preset's thread.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString shownValue(const VantlePreset &preset, const Field &field);

/// A preset of its own with what the other's document keeps, its name, and every secret masked: for showing
/// and logging. Throws EncodingError, and DecodingError for a preset whose kind is not one of its class. On
/// the preset's thread, to which the copy belongs.
[[nodiscard]] VANTLE_PRESETS_EXPORT std::shared_ptr<VantlePreset>
withMaskedSecrets(const VantlePreset &preset);

/// The same with every secret left out: for handing on. The keys that a document must have are there, and
/// empty.
[[nodiscard]] VANTLE_PRESETS_EXPORT std::shared_ptr<VantlePreset> withoutSecrets(const VantlePreset &preset);

/// Gives a preset the secrets that it lacks and another one of the same kind has: those of its empty fields,
/// and those of an address that is the other's without them. Nothing when the kinds differ: a service's key
/// is nobody else's business. On the presets' thread.
VANTLE_PRESETS_EXPORT void fillSecrets(VantlePreset &preset, const VantlePreset &other);

} // namespace vantle
