// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/PresetFormView.h"
#include "VantlePresets/model/HLSVantlePreset.h"

namespace vantle {

/// The form of an HLS preset.
class HLSPresetView : public PresetFormView
{
    Q_OBJECT

public:
    explicit HLSPresetView(const std::shared_ptr<HLSVantlePreset> &preset, QWidget *parent = nullptr);
};

} // namespace vantle
