// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/PresetChanges.h"

namespace vantle {

void PresetChanges::setPreset(const std::shared_ptr<VantlePreset> &preset)
{
    if (m_preset)
        m_preset->disconnect(this);
    m_preset = preset;
    followRecords();
    if (!preset)
        return;
    connect(preset.get(), &VantlePreset::objectWillChange, this, &PresetChanges::presetWillChange);
    connect(preset.get(), &VantlePreset::videoSettingsChanged, this, &PresetChanges::followRecords);
    connect(preset.get(), &VantlePreset::audioSettingsChanged, this, &PresetChanges::followRecords);
}

void PresetChanges::followRecords()
{
    for (const auto &connection : std::as_const(m_records))
        disconnect(connection);
    m_records.clear();
    if (!m_preset)
        return;
    const auto follow = [this](const auto &records) {
        for (const auto &record : records)
            m_records.append(connect(record.get(), &ObservableRecord::objectWillChange, this,
                                     &PresetChanges::presetWillChange));
    };
    follow(m_preset->videoSettings());
    follow(m_preset->audioSettings());
}

} // namespace vantle
