// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/store/PresetsManager.h"

#include <QtWidgets/QWidget>

class QLineEdit;
class QShortcut;
class QToolButton;

namespace vantle {

class PresetsListView;

/// The presets list between the field that filters it, which is hidden until it is asked for, and the menu
/// that adds a preset. A shade apart from the form beside it, with a line between the two.
class Sidebar : public QWidget
{
    Q_OBJECT

public:
    explicit Sidebar(const std::shared_ptr<PresetsManager> &manager, QWidget *parent = nullptr);

    [[nodiscard]] PresetsListView *list() const { return m_list; }

    /// Shows the sidebar and, in it, the field, which takes the focus.
    void openFind();
    /// Shows all presets again. A focus in the field goes to the list.
    void closeFind();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QWidget *makeFindField();
    QToolButton *makeAddButton();
    void addPreset(StreamingType type);

    std::shared_ptr<PresetsManager> m_manager;
    PresetsListView *m_list;
    QLineEdit *m_find = nullptr;
    QShortcut *m_endFind = nullptr;
};

} // namespace vantle
