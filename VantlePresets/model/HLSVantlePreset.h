// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/model/VantlePreset.h"

namespace vantle {

/// A preset for HTTP Live Streaming, which has no connection parameters.
class VANTLE_PRESETS_EXPORT HLSVantlePreset : public VantlePreset
{
    Q_OBJECT

public:
    /// For the static functions that make objects.
    explicit HLSVantlePreset(Key);
    ~HLSVantlePreset() override;

    /// A new preset with one default rendition and one default track.
    [[nodiscard]] static std::shared_ptr<HLSVantlePreset> withName(const QString &name);
    static std::shared_ptr<HLSVantlePreset> withType(StreamingType type, const QString &name) = delete;

    /// As the base class reads it: silent on failure, tracks with their delegate.
    [[nodiscard]] static std::shared_ptr<HLSVantlePreset> withFileAtPath(const QString &path);

    /// Reads a whole HLS document; throws DecodingError. See decodePreset().
    [[nodiscard]] static std::shared_ptr<HLSVantlePreset> decoded(QByteArrayView document);

private:
    friend class VantlePresetPrivate;
};

} // namespace vantle
