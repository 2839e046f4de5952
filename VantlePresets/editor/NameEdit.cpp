// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/NameEdit.h"

#include "VantlePresets/editor/TextField.h"

namespace vantle {

NameEdit::NameEdit(const std::shared_ptr<PresetsManager> &manager, QObject *parent)
    : QObject(parent), m_manager(manager)
{
    // Views leave the field when its row goes; by then there must be no edit to end.
    connect(manager.get(), &PresetsManager::rowAboutToBeRemoved, this, [this](int row) {
        if (m_manager->presets().at(row) == m_preset)
            m_preset.reset();
    });
}

void NameEdit::begin(const std::shared_ptr<VantlePreset> &preset)
{
    if (preset == m_preset)
        return;
    end();
    // What is unsaved when the user goes to another application has to be saved before the edit: a save
    // would end it.
    if (m_manager->rowOf(preset) >= 0 && m_manager->hasUnsavedEdits(preset))
        m_manager->save(preset);
    m_preset = preset;
    m_originalPresetName = preset->name();
    m_manager->beginNameEdit(preset);
}

void NameEdit::type(const QString &text)
{
    if (m_preset)
        m_preset->setName(withoutControls(text));
}

void NameEdit::end()
{
    // Renaming assigns the selection, whose observers may come here again.
    const auto preset = std::exchange(m_preset, nullptr);
    if (!preset)
        return;
    m_manager->endNameEdit();
    if (m_manager->rowOf(preset) < 0)
        return;
    if (m_manager->rename(preset, m_originalPresetName, preset->name()))
        return;
    preset->setName(m_originalPresetName);
    Q_EMIT renameFailed();
}

void NameEdit::undo()
{
    const auto preset = std::exchange(m_preset, nullptr);
    if (!preset)
        return;
    m_manager->endNameEdit();
    preset->setName(m_originalPresetName);
}

} // namespace vantle
