// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/YouTubeFacebookPresetView.h"

namespace vantle {

YouTubeFacebookPresetView::YouTubeFacebookPresetView(const std::shared_ptr<RTMPVantlePreset> &preset,
                                                     QWidget *parent)
    : PresetFormView(Entries::fixed, parent)
{
    setPreset(preset);
}

} // namespace vantle
