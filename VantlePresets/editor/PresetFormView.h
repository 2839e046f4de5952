// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/core/ProgrammingFault.h"
#include "VantlePresets/editor/LazyStack.h"
#include "VantlePresets/model/VantlePreset.h"

class QPushButton;

namespace vantle {

class StreamingSettingsGroup;

/// What the forms of all kinds have in common: an optional group for the connection, the renditions and
/// the tracks, each list with a button to add one where the kind allows it.
///
/// Writes straight into the preset and never writes a file. A form goes on to another preset of its class
/// with setPreset(), so that a selection costs no new widgets.
class PresetFormView : public LazyStack
{
    Q_OBJECT

public:
    [[nodiscard]] const std::shared_ptr<VantlePreset> &preset() const { return m_preset; }
    void setPreset(const std::shared_ptr<VantlePreset> &preset);

    /// Rows for all connection fields that the kind's files keep, beyond those of every form of the kind.
    void setShowsConnectionRows(bool shows);

protected:
    enum class Entries { fixed, canBeAdded };

    PresetFormView(Entries entries, QWidget *parent);

    [[nodiscard]] QWidget *makeForm(const Section &section) override;
    void showInForm(QWidget *form, const Section &section) override;

private:
    QPushButton *makeAddButton(const QString &symbol, const QColor &tint, const QString &text,
                               const QString &list);
    void keepInSight(QWidget *button);
    void showConnection();
    void showLists();

    std::shared_ptr<VantlePreset> m_preset;
    StreamingSettingsGroup *m_connectionGroup = nullptr; ///< made for the first preset that has one
    bool m_showsConnectionRows = false;
    QPushButton *m_addVideo = nullptr;
    QPushButton *m_addAudio = nullptr;
};

/// The preset as the class that its kind stands for; another class is a programming fault.
template <class Preset>
[[nodiscard]] std::shared_ptr<Preset> presetAs(const std::shared_ptr<VantlePreset> &preset)
{
    auto converted = std::dynamic_pointer_cast<Preset>(preset);
    if (!converted)
        programmingFault("a preset whose class does not match its type");
    return converted;
}

} // namespace vantle
