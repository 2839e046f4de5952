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
    [[nodiscard]] static NotificationCenter &defaultCenter();

    void post(const QString &name);

Q_SIGNALS:
    void posted(const QString &name);

private:
    NotificationCenter() = default;
};

} // namespace vantle
