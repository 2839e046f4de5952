// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/store/PresetsManager.h"

#include <QtCore/QObject>

namespace vantle {

/// One rename from the moment the name field gets the focus until it is left. The name is written while
/// the user types; the store renames the file at the end, or the old name comes back. A preset that leaves
/// the list takes its edit with it.
class NameEdit : public QObject
{
    Q_OBJECT

public:
    explicit NameEdit(const std::shared_ptr<PresetsManager> &manager, QObject *parent = nullptr);

    /// The preset whose name is being edited, or null.
    [[nodiscard]] const std::shared_ptr<VantlePreset> &preset() const { return m_preset; }

    /// Ends an edit of another preset first; goes on with one of the same.
    void begin(const std::shared_ptr<VantlePreset> &preset);
    void type(const QString &text);
    /// As the user leaves the field. Nothing without an edit, or when the preset has left the list.
    void end();
    void undo();

Q_SIGNALS:
    /// The store refused the name; the old one is back.
    void renameFailed();

private:
    std::shared_ptr<PresetsManager> m_manager;
    std::shared_ptr<VantlePreset> m_preset;
    QString m_originalPresetName;
};

} // namespace vantle
