// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/HLSPresetView.h"

namespace vantle {

HLSPresetView::HLSPresetView(const std::shared_ptr<HLSVantlePreset> &preset, QWidget *parent)
    : PresetFormView(Entries::canBeAdded, parent)
{
    setPreset(preset);
}

} // namespace vantle
