// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/SRTPresetView.h"

namespace vantle {

SRTPresetView::SRTPresetView(const std::shared_ptr<SRTVantlePreset> &preset, QWidget *parent)
    : PresetFormView(Entries::canBeAdded, parent)
{
    setPreset(preset);
}

} // namespace vantle
