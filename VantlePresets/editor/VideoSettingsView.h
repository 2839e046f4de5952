// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/FieldHints.h"
#include "VantlePresets/editor/SettingsForm.h"

namespace vantle {

class ChoiceBox;
class FieldRow;
class FormLabel;
class HintLabel;
class IntegerField;
class SettingsHeader;

/// The form of one video rendition.
class VideoSettingsView final : public SettingsForm<VideoSettings>
{
    Q_OBJECT

public:
    VideoSettingsView(const std::shared_ptr<VideoSettings> &settings,
                      const std::shared_ptr<VantlePreset> &preset, QWidget *parent = nullptr);

    /// The largest bit rate that the chosen profile allows, in kbit/s.
    [[nodiscard]] qint64 maxBitrate() const { return m_maxBitrate; }

    /// What there is to say of the rendition, whose place in the document is given.
    void showHints(const FieldHints &hints, const QString &place);

Q_SIGNALS:
    /// There is something to say that the settings alone don't tell.
    void hintsWillChange();

private:
    void makeFields();
    void observe() override;
    void showSettings() override;
    void showSize();
    void showProfiles();
    void takeBitRate(qint64 bitRate);
    void removeSettings();

    qint64 m_maxBitrate = 0;
    bool m_isRateRefused = false; ///< the bit rate that was typed is not the one that is held

    SettingsHeader *m_header = nullptr;
    HintLabel *m_hint = nullptr; ///< on the rendition as a whole
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
};

} // namespace vantle
