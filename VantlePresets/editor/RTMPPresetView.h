// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/PresetFormView.h"
#include "VantlePresets/model/RTMPVantlePreset.h"

namespace vantle {

/// The form of an RTMP or Wowza preset, which keeps the renditions and tracks it was created with.
class RTMPPresetView : public PresetFormView
{
    Q_OBJECT

public:
    explicit RTMPPresetView(const std::shared_ptr<RTMPVantlePreset> &preset, QWidget *parent = nullptr);
};

} // namespace vantle
