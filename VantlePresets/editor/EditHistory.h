// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/store/PresetsManager.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

namespace vantle {

/// Undo and redo of the edits of one preset, by snapshots of its document.
///
/// A step is what changed in one turn of the event loop; what is edited in one field, until the focus leaves
/// it, is one step. A change of the file by another process is a step, too. The name is not part of it.
class EditHistory : public QObject
{
    Q_OBJECT

public:
    explicit EditHistory(const std::shared_ptr<PresetsManager> &manager, QObject *parent = nullptr);

    /// Begins anew with another preset, or with none.
    void setPreset(const std::shared_ptr<VantlePreset> &preset);

    /// Nothing when there is nothing to undo or redo.
    void undo() { go(-1); }
    void redo() { go(1); }

Q_SIGNALS:
    /// A field of the preset, or of one of its renditions and tracks, is about to be assigned, by whomever;
    /// its old value still stands.
    void presetWillChange();

private:
    void observe();
    void noteChange();
    void take();
    void append(const QByteArray &document);
    void go(int steps);

    std::shared_ptr<PresetsManager> m_manager;
    std::shared_ptr<VantlePreset> m_preset;
    QList<QByteArray> m_documents; ///< the oldest first
    qsizetype m_current = -1;
    qsizetype m_bytes = 0;       ///< of all documents
    QPointer<QWidget> m_editing; ///< the field whose edits the last step consists of
    bool m_isTakeDue = false;
    bool m_isGoing = false;
    QList<QMetaObject::Connection> m_records; ///< to the renditions and tracks
};

} // namespace vantle
