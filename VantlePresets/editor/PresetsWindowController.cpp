// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/PresetsWindowController.h"

#include "VantlePresets/editor/MainThread.h"
#include "VantlePresets/editor/VantleView.h"

namespace vantle {

void PresetsWindowController::setWindow(std::unique_ptr<QMainWindow> window)
{
    requireMainThread();
    m_window = std::move(window);
}

namespace {

VantleView *viewOf(const QMainWindow *window)
{
    return window ? qobject_cast<VantleView *>(window->centralWidget()) : nullptr;
}

} // namespace

void PresetsWindowController::setShowsConnectionRows(bool shows)
{
    requireMainThread();
    if (VantleView *view = viewOf(m_window.get()))
        view->setShowsConnectionRows(shows);
}

bool PresetsWindowController::showsConnectionRows() const
{
    const VantleView *view = viewOf(m_window.get());
    return view && view->showsConnectionRows();
}

void PresetsWindowController::setShowsProblems(bool shows)
{
    requireMainThread();
    if (VantleView *view = viewOf(m_window.get()))
        view->setShowsProblems(shows);
}

bool PresetsWindowController::showsProblems() const
{
    const VantleView *view = viewOf(m_window.get());
    return view && view->showsProblems();
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
