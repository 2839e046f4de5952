// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/Export.h"

#include <QtCore/QObject>
#include <QtCore/QString>

namespace vantle {

/// Asks the presets lists of the process to take the keyboard focus. Posted after a preset was added.
inline constexpr QLatin1StringView kFocusPresetsListNotification{"focusPresetsList"};

/// The process-wide notifications between the editor and its host: both may post and observe.
///
/// Main thread only. Observers are called before post() returns.
class VANTLE_EDITOR_EXPORT NotificationCenter : public QObject
{
    Q_OBJECT

public:
    /// The one of the process.
    [[nodiscard]] static NotificationCenter &defaultCenter();

    /// Tells all observers.
    void post(const QString &name);

Q_SIGNALS:
    /// A notification of any name; observers look for theirs.
    void posted(const QString &name);

private:
    NotificationCenter() = default;
};

} // namespace vantle
