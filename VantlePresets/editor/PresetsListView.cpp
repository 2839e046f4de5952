// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/PresetsListView.h"

#include "VantlePresets/editor/BundleIcon.h"
#include "VantlePresets/editor/EditorStyle.h"
#include "VantlePresets/editor/NotificationCenter.h"
#include "VantlePresets/editor/PresetsListDelegate.h"
#include "VantlePresets/editor/PresetsListModel.h"

#include <QtCore/QScopedValueRollback>
#include <QtGui/QContextMenuEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

#include <algorithm>

namespace vantle {

using namespace Qt::StringLiterals;

namespace {

/// A name is no markup, and the second text has room for a line instead of the width of the first one.
void dressMessage(QMessageBox &message)
{
    constexpr int kWidest = 420;
    for (auto *label : message.findChildren<QLabel *>()) {
        label->setTextFormat(Qt::PlainText);
        if (label->text() == message.informativeText())
            label->setMinimumWidth(
                std::min(kWidest, label->fontMetrics().horizontalAdvance(label->text()) + kInRow));
    }
}

} // namespace

PresetsListView::PresetsListView(const std::shared_ptr<PresetsManager> &manager, QWidget *parent)
    : QListView(parent), m_manager(manager), m_nameEdit(new NameEdit(manager, this)),
      m_model(new PresetsListModel(manager, this))
{
    setObjectName(u"presets"_s);
    setAccessibleName(tr("Presets"));
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(SingleSelection);
    setEditTriggers(EditKeyPressed | DoubleClicked);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    setUniformItemSizes(true); // else every insertion asks each of ten thousand rows for its size
    viewport()->setAutoFillBackground(false);
    viewport()->setAttribute(Qt::WA_Hover);
    setModel(m_model);

    auto *delegate = new PresetsListDelegate(this);
    setItemDelegate(delegate);
    connect(delegate, &PresetsListDelegate::nameEditBegins, this,
            [this](const QModelIndex &index) { m_nameEdit->begin(m_model->preset(index)); });
    connect(delegate, &PresetsListDelegate::nameTyped, m_nameEdit, &NameEdit::type);
    connect(delegate, &PresetsListDelegate::nameEditEnds, this, &PresetsListView::leaveNameField);
    connect(delegate, &PresetsListDelegate::nameEditUndone, m_nameEdit, &NameEdit::undo);
    connect(m_nameEdit, &NameEdit::renameFailed, this, &PresetsListView::showRenameFailed);

    connect(m_manager.get(), &PresetsManager::selectedPresetChanged, this, &PresetsListView::followSelection);
    connect(m_manager.get(), &PresetsManager::nameEditMustEnd, this, &PresetsListView::endNameEdit);
    connect(m_model, &QAbstractItemModel::rowsRemoved, this, &PresetsListView::showSelection);
    connect(m_model, &QAbstractItemModel::modelReset, this, [this] {
        showSelection();
        reopenNameField();
    });
    connect(&NotificationCenter::defaultCenter(), &NotificationCenter::posted, this,
            [this](const QString &name) {
                if (name == kFocusPresetsListNotification)
                    takeFocusSoon();
            });
    showSelection();
}

void PresetsListView::setFilter(const QString &text)
{
    m_model->setFilter(text);
    scrollTo(m_model->indexOf(m_manager->selectedPreset()));
}

void PresetsListView::goToShown()
{
    setFocus();
    if (!m_model->indexOf(m_manager->selectedPreset()).isValid() && m_model->rowCount() > 0)
        setCurrentIndex(m_model->index(0));
}

void PresetsListView::endNameEdit()
{
    const QPersistentModelIndex index = m_model->indexOf(m_nameEdit->preset());
    finishRename();
    if (QWidget *editor = index.isValid() ? indexWidget(index) : nullptr)
        closeEditor(editor, QAbstractItemDelegate::NoHint);
}

void PresetsListView::leaveNameField(bool byMouse)
{
    // A rename may move the row. A press that is on its way must meet the rows that the user saw.
    if (byMouse)
        QMetaObject::invokeMethod(this, &PresetsListView::endNameEdit, Qt::QueuedConnection);
    else
        finishRename();
}

/// Goes along when the row moves, unless the user has gone on to another one.
void PresetsListView::finishRename()
{
    const auto preset = m_nameEdit->preset();
    m_nameEdit->end();
    if (preset) // not while the view closes the field
        QMetaObject::invokeMethod(this, &PresetsListView::filterMustEnd, Qt::QueuedConnection);
    if (preset && preset == m_manager->selectedPreset())
        scrollTo(m_model->indexOf(preset));
}

/// A reload takes every field with it, but an edit only ends with its own preset.
void PresetsListView::reopenNameField()
{
    const QModelIndex index = m_model->indexOf(m_nameEdit->preset());
    if (!index.isValid())
        return;
    edit(index);
    if (auto *field = qobject_cast<QLineEdit *>(indexWidget(index))) {
        field->setModified(true);
        field->end(false);
    }
}

void PresetsListView::selectionChanged(const QItemSelection &selected, const QItemSelection &deselected)
{
    QListView::selectionChanged(selected, deselected);
    const bool isChange = !selected.isEmpty() || !deselected.isEmpty(); // setting the model is none
    if (!isChange || m_isShowingSelection || m_model->isChanging())
        return;
    const QModelIndexList rows = selectedIndexes();
    const auto preset = rows.isEmpty() ? nullptr : m_model->preset(rows.first());
    if (preset == m_manager->selectedPreset())
        return;
    saveBeforeLeaving(*m_manager);
    m_manager->setSelectedPreset(preset);
}

void PresetsListView::followSelection(const std::shared_ptr<VantlePreset> &preset)
{
    // No selection is often one that comes back, or the first sign of a row that goes.
    if (preset)
        showSelection();
    else
        QMetaObject::invokeMethod(this, &PresetsListView::showSelection, Qt::QueuedConnection);
}

void PresetsListView::showSelection()
{
    const QScopedValueRollback guard(m_isShowingSelection, true);
    const QModelIndex index = m_model->indexOf(m_manager->selectedPreset());
    if (index.isValid() && index == currentIndex() && selectionModel()->isSelected(index))
        return;
    if (index.isValid())
        setCurrentIndex(index);
    else
        selectionModel()->clear();
}

void PresetsListView::takeFocusSoon()
{
    QMetaObject::invokeMethod(
        this, [this] { setFocus(); }, Qt::QueuedConnection);
}

void PresetsListView::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Delete:
        if (m_manager->selectedPreset() && !m_nameEdit->preset())
            confirmDelete(m_manager->selectedPreset());
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (state() != EditingState && currentIndex().isValid())
            edit(currentIndex());
        return;
    default:
        QListView::keyPressEvent(event);
    }
}

QModelIndex PresetsListView::deleteButtonAt(const QMouseEvent &event) const
{
    const QPoint position = event.position().toPoint();
    const QModelIndex index = indexAt(position);
    const QRect button = PresetsListDelegate::deleteButton(visualRect(index), layoutDirection());
    return index.isValid() && event.button() == Qt::LeftButton && button.contains(position) ? index
                                                                                            : QModelIndex();
}

void PresetsListView::mousePressEvent(QMouseEvent *event)
{
    // A press on the button neither selects the row nor begins a rename.
    m_pressedDeleteButton = deleteButtonAt(*event);
    if (!m_pressedDeleteButton.isValid())
        QListView::mousePressEvent(event);
}

void PresetsListView::mouseReleaseEvent(QMouseEvent *event)
{
    const QPersistentModelIndex pressed = std::exchange(m_pressedDeleteButton, QPersistentModelIndex());
    if (!pressed.isValid())
        QListView::mouseReleaseEvent(event);
    else if (deleteButtonAt(*event) == pressed)
        confirmDelete(m_model->preset(pressed));
}

void PresetsListView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (!deleteButtonAt(*event).isValid())
        QListView::mouseDoubleClickEvent(event);
}

void PresetsListView::contextMenuEvent(QContextMenuEvent *event)
{
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = isByKey ? currentIndex() : indexAt(event->pos());
    const auto preset = m_model->preset(index);
    if (!preset)
        return;
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(menu->addAction(tr("Duplicate")), &QAction::triggered, this,
            [this, preset] { duplicate(preset); });
    connect(menu->addAction(bundleSymbol(u"trash"_s, trashTint()), tr("Delete")), &QAction::triggered, this,
            [this, preset] { confirmDelete(preset); });
    menu->popup(isByKey ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos());
}

void PresetsListView::closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint)
{
    // The Tab key ends a rename; it does not begin one of another preset.
    QListView::closeEditor(editor, QAbstractItemDelegate::NoHint);
}

void PresetsListView::focusInEvent(QFocusEvent *event)
{
    QListView::focusInEvent(event);
    // The base class makes the first row the current one, and an arrow key would then skip it.
    if (!selectionModel()->hasSelection())
        selectionModel()->setCurrentIndex({}, QItemSelectionModel::NoUpdate);
}

void PresetsListView::showEvent(QShowEvent *event)
{
    QListView::showEvent(event);
    if (!m_keyMonitor)
        m_keyMonitor = std::make_unique<LocalKeyMonitor>(
            [this](const QKeyEvent &key) { return duplicateByShortcut(key); });
}

void PresetsListView::hideEvent(QHideEvent *event)
{
    m_keyMonitor.reset();
    endNameEdit();
    QListView::hideEvent(event);
}

bool PresetsListView::duplicateByShortcut(const QKeyEvent &event)
{
    const bool isShortcut = event.modifiers().testFlag(Qt::ControlModifier) && event.key() == Qt::Key_D;
    // An open dialog asks about what the user sees behind it.
    if (!isShortcut || m_nameEdit->preset() || !m_manager->selectedPreset() ||
        QApplication::activeModalWidget())
        return false;
    if (m_keyMonitor->isRepetition(event))
        return true; // one press is one duplicate, however long it is held
    duplicate(m_manager->selectedPreset());
    takeFocusSoon();
    return true;
}

void PresetsListView::duplicate(const std::shared_ptr<VantlePreset> &preset)
{
    const auto source = preset; // the argument may be the selection itself, which is about to change
    endNameEdit();
    saveBeforeLeaving(*m_manager);
    m_manager->duplicate(source);
    Q_EMIT filterMustEnd();
}

void PresetsListView::confirmDelete(const std::shared_ptr<VantlePreset> &preset)
{
    if (!preset)
        return;
    auto *dialog = new QMessageBox(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setText(tr("Are you sure you want to delete this preset?\nThis operation cannot be undone."));
    dialog->setInformativeText(preset->name());
    dressMessage(*dialog);
    const QPushButton *confirm = dialog->addButton(tr("Delete"), QMessageBox::DestructiveRole);
    QPushButton *cancel = dialog->addButton(tr("Cancel"), QMessageBox::RejectRole);
    dialog->setDefaultButton(cancel);
    dialog->setEscapeButton(cancel);
    connect(dialog, &QMessageBox::finished, this, [this, dialog, confirm, preset] {
        if (dialog->clickedButton() == confirm)
            deleteConfirmed(preset);
        takeFocusSoon();
    });
    dialog->open();
}

void PresetsListView::deleteConfirmed(const std::shared_ptr<VantlePreset> &preset)
{
    const int row = m_manager->rowOf(preset);
    if (preset != m_manager->selectedPreset())
        saveBeforeLeaving(*m_manager);
    m_manager->remove(preset);
    const PresetsList &presets = m_manager->presets();
    if (presets.isEmpty())
        m_manager->setSelectedPreset(nullptr);
    else
        m_manager->setSelectedPreset(presets.at(std::max(row - 1, 0)));
}

void PresetsListView::showRenameFailed()
{
    auto *alert =
        new QMessageBox(QMessageBox::NoIcon, tr("Rename Failed"), tr("Rename Failed"), QMessageBox::Ok, this);
    alert->setAttribute(Qt::WA_DeleteOnClose);
    alert->setInformativeText(tr("This name is invalid or already taken."));
    dressMessage(*alert);
    alert->open();
}

void saveBeforeLeaving(PresetsManager &manager)
{
    const auto preset = manager.selectedPreset();
    if (preset && manager.hasUnsavedEdits(preset))
        manager.save(preset);
}

} // namespace vantle
