// SPDX-License-Identifier: MIT
#pragma once

#include <QtWidgets/QStyledItemDelegate>

namespace vantle {

/// Draws a row of the presets list: icon, name, and a delete button while the row is selected or under
/// the pointer. Makes the field in which the name is edited.
class PresetsListDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    [[nodiscard]] QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                        const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;

    /// Where the delete button of a row is, when the row is at `row` of a view.
    [[nodiscard]] static QRect deleteButton(const QRect &row, Qt::LayoutDirection direction);

Q_SIGNALS:
    /// The user is in the name field of the row, types in it, leaves it.
    void nameEditBegins(const QModelIndex &index) const;
    void nameTyped(const QString &text) const;
    /// `byMouse`: the press that took the focus is still to be delivered.
    void nameEditEnds(bool byMouse) const;
    void nameEditUndone() const;

protected:
    bool eventFilter(QObject *editor, QEvent *event) override;
};

} // namespace vantle
