// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/FieldHints.h"
#include "VantlePresets/editor/SettingsForm.h"

namespace vantle {

class ChannelToggles;
class ChoiceBox;
class FieldRow;
class HintLabel;
class IntegerField;
class SettingsHeader;
class Switch;

/// The form of one audio track.
class AudioSettingsView final : public SettingsForm<AudioSettings>
{
    Q_OBJECT

public:
    AudioSettingsView(const std::shared_ptr<AudioSettings> &settings,
                      const std::shared_ptr<VantlePreset> &preset, QWidget *parent = nullptr);

    /// What there is to say of the track, whose place in the document is given.
    void showHints(const FieldHints &hints, const QString &place);

private:
    void makeFields();
    void connectFields();
    void observe() override;
    void showSettings() override;
    void setDefault(bool isDefault);
    void removeSettings();

    SettingsHeader *m_header = nullptr;
    HintLabel *m_hint = nullptr; ///< on the track as a whole
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
    HintLabel *m_channelsHint = nullptr;
};

} // namespace vantle
