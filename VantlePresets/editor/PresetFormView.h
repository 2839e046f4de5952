// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/core/ProgrammingFault.h"
#include "VantlePresets/editor/FieldHints.h"
#include "VantlePresets/editor/LazyStack.h"
#include "VantlePresets/model/VantlePreset.h"

#include <QtCore/QTimer>

class QPushButton;

namespace vantle {

class HintLabel;
class StreamingSettingsGroup;

/// What the forms of all kinds have in common: an optional group for the connection, the renditions and
/// the tracks, each list with a button to add one where the kind allows it.
///
/// Writes straight into the preset and never writes a file. A form goes on to another preset of its class
/// with setPreset(), so that a selection costs no new widgets.
///
/// Advice on the preset stands as hints under its fields, in lines that it takes from what is below. So that
/// the form stays still under the user's hands, hints follow a choice at once, but typing only when it pauses
/// or its field is left, and never while a mouse button is held.
class PresetFormView : public LazyStack
{
    Q_OBJECT

public:
    [[nodiscard]] const std::shared_ptr<VantlePreset> &preset() const { return m_preset; }
    void setPreset(const std::shared_ptr<VantlePreset> &preset);

    /// Rows for all connection fields that the kind's files keep, beyond those of every form of the kind.
    void setShowsConnectionRows(bool shows);

    /// Something of the preset is about to change: the hints follow it.
    void showHintsSoon();

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
    void takeLists();
    void showHints();

    std::shared_ptr<VantlePreset> m_preset;
    FieldHints m_hints;
    QTimer m_hintTimer;
    HintLabel *m_videoHint; ///< on the list as a whole, where a rendition would be added
    HintLabel *m_audioHint;
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
