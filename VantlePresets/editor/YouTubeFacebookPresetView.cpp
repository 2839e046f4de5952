// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/YouTubeFacebookPresetView.h"

#include "VantlePresets/editor/StreamingSettingsGroup.h"

namespace vantle {

YouTubeFacebookPresetView::YouTubeFacebookPresetView(const std::shared_ptr<RTMPVantlePreset> &preset,
                                                     QWidget *parent)
    : YouTubeFacebookPresetView(new StreamingSettingsGroup, preset, parent)
{
}

YouTubeFacebookPresetView::YouTubeFacebookPresetView(StreamingSettingsGroup *group,
                                                     const std::shared_ptr<RTMPVantlePreset> &preset,
                                                     QWidget *parent)
    : PresetFormView(Entries::fixed, group, parent), m_group(group)
{
    YouTubeFacebookPresetView::setPreset(preset);
}

void YouTubeFacebookPresetView::setPreset(const std::shared_ptr<VantlePreset> &preset)
{
    PresetFormView::setPreset(preset);
    m_group->setPreset(presetAs<RTMPVantlePreset>(preset));
}

} // namespace vantle
