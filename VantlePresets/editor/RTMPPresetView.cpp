// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/RTMPPresetView.h"

namespace vantle {

RTMPPresetView::RTMPPresetView(const std::shared_ptr<RTMPVantlePreset> &preset, QWidget *parent)
    : PresetFormView(Entries::fixed, parent)
{
    setPreset(preset);
}

} // namespace vantle
