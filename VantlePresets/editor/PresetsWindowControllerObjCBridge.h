// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/Export.h"
#include "VantlePresets/editor/PresetsWindowController.h"

#include <QtWidgets/QWidget>

#include <memory>

namespace vantle {

class PresetsManager;

/// The host's way to the editor. A view without state or content of its own.
class VANTLE_EDITOR_EXPORT PresetsWindowControllerObjCBridge : public QWidget
{
    Q_OBJECT

public:
    /// An empty view; hosts need none to open the editor.
    explicit PresetsWindowControllerObjCBridge(QWidget *parent = nullptr) : QWidget(parent) {}
    /// The same with a place in its parent.
    explicit PresetsWindowControllerObjCBridge(const QRect &frame, QWidget *parent = nullptr);

    /// A controller whose window edits the presets of the manager. The window is not shown; its frame is
    /// that of the last time. A call off the main thread stops the process.
    [[nodiscard]] static std::unique_ptr<PresetsWindowController>
    makePresetsWindowControllerWithPresetsManager(const std::shared_ptr<PresetsManager> &manager);
};

} // namespace vantle
