// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/store/PresetImport.h"

#include <QtCore/QHash>
#include <QtWidgets/QWidget>

class QSpacerItem;
class QStackedWidget;

namespace vantle {

class EditHistory;
class FormLabel;
class PresetFormView;
class ProblemStrip;
class Sidebar;

/// The root view of the editor: the presets list with its add menu beside the form of the selected preset.
///
/// Saves the selected preset when a window of the application closes, when the application quits, and, if it
/// has unsaved edits, when another application takes the focus. Its window title is the selected preset's
/// name.
class VantleView : public QWidget
{
    Q_OBJECT

public:
    explicit VantleView(const std::shared_ptr<PresetsManager> &presetsManager, QWidget *parent = nullptr);

    [[nodiscard]] const std::shared_ptr<PresetsManager> &presetsManager() const { return m_manager; }

    /// Rows for every connection field that a kind's files keep; off at first.
    void setShowsConnectionRows(bool shows);
    [[nodiscard]] bool showsConnectionRows() const { return m_showsConnectionRows; }
    /// The strip that says what could not be saved, deleted or loaded; on at first.
    void setShowsProblems(bool shows);
    [[nodiscard]] bool showsProblems() const;

    /// Shows or hides the sidebar.
    Q_INVOKABLE void toggleSidebar();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *makeDetail();
    void makeShortcuts();
    void alignTitle();
    void showSelectedPresetSoon();
    void showSelectedPreset();
    void showTitle();
    void saveBeforeEnd();
    void importFiles(QList<PresetImport> imports);
    void saveWhenLeft(Qt::ApplicationState state);

    using ShowInForm = PresetFormView *(*)(PresetFormView *, const std::shared_ptr<VantlePreset> &,
                                           QWidget *);

    std::shared_ptr<PresetsManager> m_manager;
    std::shared_ptr<VantlePreset> m_shown;
    Sidebar *m_sidebar = nullptr;
    EditHistory *m_history;
    ProblemStrip *m_problems = nullptr;
    QWidget *m_header = nullptr;
    QSpacerItem *m_beforeTitle = nullptr;
    FormLabel *m_title = nullptr;
    QStackedWidget *m_detail = nullptr;
    QWidget *m_placeholder = nullptr;
    QHash<ShowInForm, PresetFormView *> m_forms; ///< kinds with the same form share it
    bool m_isShowDue = false;
    bool m_showsConnectionRows = false;
};

} // namespace vantle
