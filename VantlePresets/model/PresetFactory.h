// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/document/DocumentError.h"
#include "VantlePresets/model/VantlePreset.h"

#include <QtCore/QByteArrayView>

#include <filesystem>

namespace vantle {

/// A new preset of the kind with its defaults, as the class of that kind; for the push-to-server kinds
/// without backup flag and stream key. A kind outside the enumeration stops the process.
[[nodiscard]] VANTLE_PRESETS_EXPORT std::shared_ptr<VantlePreset> makePreset(StreamingType type,
                                                                             const QString &name);

/// The fields that presets of the kind have, in the order in which files hold them; of those, isKept() tells
/// which ones the kind's files do hold. A kind outside the enumeration stops the process. Callable from any
/// thread.
[[nodiscard]] VANTLE_PRESETS_EXPORT const QList<Field> &presetFields(StreamingType type);

/// Reads a document of any kind as the class of its kind; an unknown kind reads as HLS. Throws
/// DecodingError. The name is "Untitled Preset". Callable from any thread, to which the preset belongs.
[[nodiscard]] VANTLE_PRESETS_EXPORT std::shared_ptr<VantlePreset> decodePreset(QByteArrayView document);

/// Reads a preset file of any kind; the preset is named after the file. Throws DecodingError, or
/// std::system_error when the file can't be read. Callable from any thread, to which the preset belongs.
[[nodiscard]] VANTLE_PRESETS_EXPORT std::shared_ptr<VantlePreset>
readPresetFile(const std::filesystem::path &path);

/// The right way to update a preset from another one, whatever their classes: takes over all that the class's
/// document keeps, with the class's own update(). False, without a change,
/// when the two presets are not of the same class.
VANTLE_PRESETS_EXPORT bool updatePreset(VantlePreset &preset, const VantlePreset &source);

} // namespace vantle
