// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/core/ProgrammingFault.h"
#include "VantlePresets/editor/GroupBox.h"
#include "VantlePresets/editor/TextField.h"
#include "VantlePresets/model/VantlePreset.h"

#include <memory>

namespace vantle {

/// What the forms of a rendition and of a track have in common. Writes straight into the settings while the
/// user edits. Which fields there are depends on the preset's class, for good.
template <class Settings>
class SettingsForm : public GroupBox
{
public:
    /// Shows other settings of a preset of the same class. Within the same preset they take the place of
    /// the first ones, and what the user is typing goes into them.
    void setSettings(const std::shared_ptr<Settings> &settings, const std::shared_ptr<VantlePreset> &preset)
    {
        if (settings == m_settings && preset == m_preset)
            return;
        const bool isSuccessor = preset == m_preset;
        m_settings->disconnect(this);
        m_settings = settings;
        m_preset = preset;
        observe();
        showSettings();
        if (!isSuccessor)
            return;
        for (auto *const field : findChildren<TextField *>())
            field->carryEditOver();
    }

protected:
    SettingsForm(const std::shared_ptr<Settings> &settings, const std::shared_ptr<VantlePreset> &preset,
                 QWidget *parent)
        : GroupBox(parent), m_settings(settings), m_preset(preset)
    {
        if (!settings || !preset)
            programmingFault("a settings form without settings or preset");
    }

    /// Connects to the settings; setSettings() has cut the connections to those before.
    virtual void observe() = 0;
    virtual void showSettings() = 0;

    std::shared_ptr<Settings> m_settings;
    std::shared_ptr<VantlePreset> m_preset;
};

} // namespace vantle
