// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/PresetsWindowController.h"

#include "VantlePresets/editor/MainThread.h"

namespace vantle {

void PresetsWindowController::setWindow(std::unique_ptr<QMainWindow> window)
{
    requireMainThread();
    m_window = std::move(window);
}

void PresetsWindowController::showWindow()
{
    requireMainThread();
    if (!m_window)
        return;
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

} // namespace vantle
