// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/GroupBox.h"
#include "VantlePresets/model/VantlePreset.h"

namespace vantle {

class ChannelToggles;
class ChoiceBox;
class FieldRow;
class IntegerField;
class SettingsHeader;
class Switch;
class TextField;

/// The form of one audio track. Writes straight into the track while the user edits.
class AudioSettingsView : public GroupBox
{
    Q_OBJECT

public:
    /// Which fields there are depends on the preset's class, for good.
    AudioSettingsView(const std::shared_ptr<AudioSettings> &settings,
                      const std::shared_ptr<VantlePreset> &preset, QWidget *parent = nullptr);

    /// Shows another track of a preset of the same class. Within the same preset it takes the place of
    /// the first one, and what the user is typing goes into it.
    void setSettings(const std::shared_ptr<AudioSettings> &settings,
                     const std::shared_ptr<VantlePreset> &preset);

private:
    void makeFields();
    void connectFields();
    void observe();
    void showSettings();
    void setDefault(bool isDefault);
    void removeSettings();

    std::shared_ptr<AudioSettings> m_settings;
    std::shared_ptr<VantlePreset> m_preset;

    SettingsHeader *m_header = nullptr;
    FieldRow *m_row = nullptr;
    ChoiceBox *m_codec = nullptr;
    ChoiceBox *m_sampleRate = nullptr;
    ChoiceBox *m_bitsPerSample = nullptr;
    ChoiceBox *m_bitRate = nullptr;
    Switch *m_default = nullptr; ///< HLS and SRT presets only
    TextField *m_language = nullptr;
    TextField *m_trackName = nullptr;
    IntegerField *m_pid = nullptr; ///< SRT presets only
    ChannelToggles *m_channels = nullptr;
};

} // namespace vantle
