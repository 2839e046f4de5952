// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/Export.h"

#include <QtCore/QObject>
#include <QtWidgets/QMainWindow>

#include <memory>

namespace vantle {

/// Owns the editor window, which lives as long as the controller. Main thread only.
class VANTLE_EDITOR_EXPORT PresetsWindowController : public QObject
{
    Q_OBJECT

public:
    /// Without a window.
    PresetsWindowController() = default;

    /// Null until a window was set.
    [[nodiscard]] QMainWindow *window() const { return m_window.get(); }
    /// Destroys the window that it had.
    void setWindow(std::unique_ptr<QMainWindow> window);

    /// Brings the window to the front.
    void showWindow();

private:
    std::unique_ptr<QMainWindow> m_window;
};

} // namespace vantle
