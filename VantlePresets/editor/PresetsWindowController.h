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

    /// @{
    /// Rows in the forms for every connection field that a kind's files keep: host, port, protocol,
    /// authentication, stream key. Off at first: such fields are the host's, and only the form of YouTube and
    /// Facebook has some. Nothing without a window of the factory's, see PresetsWindowControllerObjCBridge.
    void setShowsConnectionRows(bool shows);
    [[nodiscard]] bool showsConnectionRows() const;
    /// @}
    /// @{
    /// The strip above the form that says what could not be saved, deleted or loaded, and offers to try
    /// again. On at first; a host that tells its users by PresetsManager::failed() itself takes it out, and
    /// its space with it. Nothing without a window of the factory's.
    void setShowsProblems(bool shows);
    [[nodiscard]] bool showsProblems() const;
    /// @}

    /// Brings the window to the front.
    void showWindow();

private:
    std::unique_ptr<QMainWindow> m_window;
};

} // namespace vantle
