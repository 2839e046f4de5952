// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/PresetFormView.h"
#include "VantlePresets/model/SRTVantlePreset.h"

namespace vantle {

/// The form of an SRT preset.
class SRTPresetView : public PresetFormView
{
    Q_OBJECT

public:
    explicit SRTPresetView(const std::shared_ptr<SRTVantlePreset> &preset, QWidget *parent = nullptr);
};

} // namespace vantle
