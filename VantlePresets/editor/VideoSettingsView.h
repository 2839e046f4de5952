// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/GroupBox.h"
#include "VantlePresets/model/VantlePreset.h"

namespace vantle {

class ChoiceBox;
class FieldRow;
class FormLabel;
class IntegerField;
class SettingsHeader;

/// The form of one video rendition. Writes straight into the rendition while the user edits.
class VideoSettingsView : public GroupBox
{
    Q_OBJECT

public:
    /// Which fields there are depends on the preset's class, for good.
    VideoSettingsView(const std::shared_ptr<VideoSettings> &settings,
                      const std::shared_ptr<VantlePreset> &preset, QWidget *parent = nullptr);

    /// Shows another rendition of a preset of the same class. Within the same preset it takes the place
    /// of the first one, and what the user is typing goes into it.
    void setSettings(const std::shared_ptr<VideoSettings> &settings,
                     const std::shared_ptr<VantlePreset> &preset);

    /// The largest bit rate that the chosen profile allows, in kbit/s.
    [[nodiscard]] qint64 maxBitrate() const { return m_maxBitrate; }

private:
    void makeFields();
    void observe();
    void showSettings();
    void showSize();
    void showProfiles();
    void removeSettings();

    std::shared_ptr<VideoSettings> m_settings;
    std::shared_ptr<VantlePreset> m_preset;
    qint64 m_maxBitrate = 0;

    SettingsHeader *m_header = nullptr;
    FieldRow *m_row = nullptr;
    ChoiceBox *m_codec = nullptr;
    ChoiceBox *m_resolution = nullptr;
    IntegerField *m_customWidth = nullptr;
    IntegerField *m_customHeight = nullptr;
    ChoiceBox *m_frameRate = nullptr;
    ChoiceBox *m_profile = nullptr;
    IntegerField *m_bitRate = nullptr;
    IntegerField *m_pid = nullptr; ///< SRT presets only
    FormLabel *m_maximum = nullptr;
    FormLabel *m_profileNote = nullptr;
};

} // namespace vantle
