// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/PresetsWindowController.h"
#include "VantlePresets/store/PresetsManager.h"

#include <QtWidgets/QMainWindow>

#include <memory>

/// A host's own window: the video preview, and the menu from which presets are edited and the stream begins.
class PreviewWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit PreviewWindow(const std::shared_ptr<vantle::PresetsManager> &manager);

private:
    void editPresets();
    void goLive();

    std::shared_ptr<vantle::PresetsManager> m_manager;
    std::unique_ptr<vantle::PresetsWindowController> m_editor; ///< made when first asked for
};
