// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/store/PresetsManager.h"

#include <QtCore/QHash>
#include <QtWidgets/QWidget>

class QStackedWidget;
class QToolButton;

namespace vantle {

class FormLabel;
class PresetFormView;
class PresetsListView;

/// The root view of the editor: the presets list with its add menu beside the form of the selected preset.
///
/// Saves the selected preset when a window of the application closes and when the application quits. Its
/// window title is the selected preset's name.
class VantleView : public QWidget
{
    Q_OBJECT

public:
    explicit VantleView(const std::shared_ptr<PresetsManager> &presetsManager, QWidget *parent = nullptr);

    [[nodiscard]] const std::shared_ptr<PresetsManager> &presetsManager() const { return m_manager; }

    /// Shows or hides the sidebar.
    Q_INVOKABLE void toggleSidebar();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *makeSidebar();
    QWidget *makeDetail();
    QToolButton *makeAddButton();
    void addPreset(StreamingType type);
    void showSelectedPresetSoon();
    void showSelectedPreset();
    void showTitle();
    void saveBeforeEnd();

    using MakeForm = PresetFormView *(*)(const std::shared_ptr<VantlePreset> &, QWidget *);

    std::shared_ptr<PresetsManager> m_manager;
    std::shared_ptr<VantlePreset> m_shown;
    QWidget *m_sidebar = nullptr;
    PresetsListView *m_list = nullptr;
    FormLabel *m_title = nullptr;
    QStackedWidget *m_detail = nullptr;
    QWidget *m_placeholder = nullptr;
    QHash<MakeForm, PresetFormView *> m_forms; ///< kinds with the same form share it
    bool m_isShowDue = false;
};

} // namespace vantle
