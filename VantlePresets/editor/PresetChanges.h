// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/model/VantlePreset.h"

#include <QtCore/QList>
#include <QtCore/QObject>

namespace vantle {

/// Tells that a preset is about to change, whichever of its fields, renditions and tracks it is, and follows
/// it from one set of these to the next.
class PresetChanges : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Null for none.
    void setPreset(const std::shared_ptr<VantlePreset> &preset);

Q_SIGNALS:
    /// The old value still stands. Comes for equal values, too, as ObservableRecord::objectWillChange() does.
    void presetWillChange();

private:
    void followRecords();

    std::shared_ptr<VantlePreset> m_preset;
    QList<QMetaObject::Connection> m_records; ///< to the renditions and tracks
};

} // namespace vantle
