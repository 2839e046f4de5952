// SPDX-License-Identifier: MIT
#pragma once

#include <QtWidgets/QListView>

namespace vantle {

/// A list view whose rows all have the same height, so that places are computed when they are needed. The
/// base class lays out every row when one changes; with ten thousand of them that is felt.
///
/// One column, no hidden rows, no wrapping, no drag and drop.
class UniformListView : public QListView
{
    Q_OBJECT

public:
    using QListView::QListView;

    [[nodiscard]] QRect visualRect(const QModelIndex &index) const override;
    [[nodiscard]] QModelIndex indexAt(const QPoint &position) const override;
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;
    void doItemsLayout() override;

protected:
    [[nodiscard]] int verticalOffset() const override;
    [[nodiscard]] int horizontalOffset() const override { return 0; }
    [[nodiscard]] QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags command) override;
    [[nodiscard]] QRegion visualRegionForSelection(const QItemSelection &selection) const override;
    void updateGeometries() override;
    void scrollContentsBy(int dx, int dy) override;
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    [[nodiscard]] int rowHeight() const;
    [[nodiscard]] int rowCount() const { return model() ? model()->rowCount(rootIndex()) : 0; }
    [[nodiscard]] QModelIndex indexOfRow(int row) const { return model()->index(row, 0, rootIndex()); }

    mutable int m_rowHeight = 0; ///< 0 until it is asked for
};

} // namespace vantle
