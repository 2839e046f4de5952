// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/LocalKeyMonitor.h"
#include "VantlePresets/editor/NameEdit.h"
#include "VantlePresets/store/PresetsManager.h"

#include <QtWidgets/QListView>

namespace vantle {

class PresetsListModel;

/// The list of the presets: selection, renaming in place, duplicating and deleting.
///
/// The selection is the store's. The view writes it when the user selects a row, never because rows come
/// and go.
class PresetsListView : public QListView
{
    Q_OBJECT

public:
    explicit PresetsListView(const std::shared_ptr<PresetsManager> &manager, QWidget *parent = nullptr);

    /// Ends a rename as if the user had left the field.
    void endNameEdit();

    [[nodiscard]] bool isNameEdited() const { return m_nameEdit->preset() != nullptr; }

    /// Shows the presets whose name or kind has the words of the text; all with an empty one. The selection
    /// stays, seen or not.
    void setFilter(const QString &text);
    /// Takes the focus; when the selected preset is not shown, the first one that is becomes the selected
    /// one.
    void goToShown();

Q_SIGNALS:
    /// What was done concerns presets that the filter may hide.
    void filterMustEnd();

protected:
    void selectionChanged(const QItemSelection &selected, const QItemSelection &deselected) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint) override;
    void focusInEvent(QFocusEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void followSelection(const std::shared_ptr<VantlePreset> &preset);
    void showSelection();
    [[nodiscard]] QModelIndex deleteButtonAt(const QMouseEvent &event) const;
    void takeFocusSoon();
    void duplicate(const std::shared_ptr<VantlePreset> &preset);
    bool duplicateByShortcut(const QKeyEvent &event);
    void confirmDelete(const std::shared_ptr<VantlePreset> &preset);
    void deleteConfirmed(const std::shared_ptr<VantlePreset> &preset);
    void showRenameFailed();
    void leaveNameField(bool byMouse);
    void finishRename();
    void reopenNameField();

    std::shared_ptr<PresetsManager> m_manager;
    NameEdit *m_nameEdit; // hears of rows that go before the model tells the view
    PresetsListModel *m_model;
    std::unique_ptr<LocalKeyMonitor> m_keyMonitor; ///< while the list is shown
    QPersistentModelIndex m_pressedDeleteButton;
    bool m_isShowingSelection = false;
};

/// Saves the selected preset if it was edited since its last save: called before the user's selection goes
/// on to another preset or to none.
void saveBeforeLeaving(PresetsManager &manager);

} // namespace vantle
