// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/PresetFormView.h"
#include "VantlePresets/model/RTMPVantlePreset.h"

namespace vantle {

/// The form of a YouTube or Facebook preset: the connection, and the renditions and tracks that the preset
/// was created with.
class YouTubeFacebookPresetView : public PresetFormView
{
    Q_OBJECT

public:
    explicit YouTubeFacebookPresetView(const std::shared_ptr<RTMPVantlePreset> &preset,
                                       QWidget *parent = nullptr);
};

} // namespace vantle
