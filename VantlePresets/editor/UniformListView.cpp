// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/UniformListView.h"

#include <QtGui/QPaintEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QAbstractItemDelegate>
#include <QtWidgets/QScrollBar>

#include <algorithm>

namespace vantle {

int UniformListView::rowHeight() const
{
    if (m_rowHeight == 0) {
        QStyleOptionViewItem option;
        initViewItemOption(&option);
        m_rowHeight = std::max(1, itemDelegate()->sizeHint(option, {}).height());
    }
    return m_rowHeight;
}

int UniformListView::verticalOffset() const
{
    return verticalScrollBar()->value();
}

QRect UniformListView::visualRect(const QModelIndex &index) const
{
    if (!index.isValid())
        return {};
    const int height = rowHeight();
    return {0, index.row() * height - verticalOffset(), viewport()->width(), height};
}

QModelIndex UniformListView::indexAt(const QPoint &position) const
{
    const int y = position.y() + verticalOffset();
    const int row = y / rowHeight();
    return y >= 0 && row < rowCount() ? indexOfRow(row) : QModelIndex();
}

void UniformListView::scrollTo(const QModelIndex &index, ScrollHint hint)
{
    if (!index.isValid())
        return;
    executeDelayedItemsLayout(); // the scroll bar may not know of new rows yet
    const QRect row = visualRect(index);
    const int bottom = viewport()->height() - row.height();
    int wanted = std::clamp(row.top(), 0, std::max(0, bottom));
    if (hint == PositionAtTop)
        wanted = 0;
    else if (hint == PositionAtBottom)
        wanted = bottom;
    else if (hint == PositionAtCenter)
        wanted = bottom / 2;
    verticalScrollBar()->setValue(verticalOffset() + row.top() - wanted);
}

void UniformListView::doItemsLayout()
{
    m_rowHeight = 0; // asked for by a change of the font or the delegate, among others
    // Not QListView's, which looks at every row.
    QAbstractItemView::doItemsLayout(); // NOLINT(bugprone-parent-virtual-call)
}

QModelIndex UniformListView::moveCursor(CursorAction action, Qt::KeyboardModifiers)
{
    const int last = rowCount() - 1;
    if (last < 0)
        return {};
    const int page = std::max(1, viewport()->height() / rowHeight() - 1);
    const int row = currentIndex().row(); // -1 for none
    const auto moved = [&] {
        switch (action) {
        case MoveUp:
        case MovePrevious:
            return row - 1;
        case MoveDown:
        case MoveNext:
            return row + 1;
        case MovePageUp:
            return row - page;
        case MovePageDown:
            return row + page;
        case MoveHome:
            return 0;
        case MoveEnd:
            return last;
        case MoveLeft:
        case MoveRight:
            return row;
        }
        return row;
    };
    return indexOfRow(std::clamp(moved(), 0, last));
}

void UniformListView::setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags command)
{
    const QRect wanted = rect.normalized();
    const QModelIndex first = indexAt(wanted.topLeft());
    const QModelIndex last = indexAt(wanted.bottomLeft());
    QItemSelection selection;
    if (first.isValid())
        selection.select(first, last.isValid() ? last : indexOfRow(rowCount() - 1));
    selectionModel()->select(selection, command);
}

QRegion UniformListView::visualRegionForSelection(const QItemSelection &selection) const
{
    QRegion region;
    for (const QItemSelectionRange &range : selection)
        region += visualRect(range.topLeft()) | visualRect(range.bottomRight());
    return region & viewport()->rect();
}

void UniformListView::updateGeometries()
{
    const int height = rowHeight();
    verticalScrollBar()->setSingleStep(height);
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setRange(0, std::max(0, rowCount() * height - viewport()->height()));
    QAbstractItemView::updateGeometries(); // NOLINT(bugprone-parent-virtual-call): as above
}

void UniformListView::scrollContentsBy(int dx, int dy)
{
    viewport()->scroll(dx, dy);
}

void UniformListView::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    QStyleOptionViewItem common;
    initViewItemOption(&common);
    const QPoint pointer = viewport()->mapFromGlobal(QCursor::pos());
    const QModelIndex hovered = viewport()->underMouse() ? indexAt(pointer) : QModelIndex();
    const int height = rowHeight();
    const int first = std::max(0, (event->rect().top() + verticalOffset()) / height);
    const int last = std::min(rowCount() - 1, (event->rect().bottom() + verticalOffset()) / height);
    for (int row = first; row <= last; ++row) {
        const QModelIndex index = indexOfRow(row);
        QStyleOptionViewItem option = common;
        option.rect = visualRect(index);
        option.state.setFlag(QStyle::State_Selected, selectionModel()->isSelected(index));
        option.state.setFlag(QStyle::State_MouseOver, index == hovered);
        option.state.setFlag(QStyle::State_HasFocus, hasFocus() && index == currentIndex());
        itemDelegate()->paint(&painter, option, index);
    }
}

void UniformListView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        m_rowHeight = 0;
    QListView::changeEvent(event);
}

} // namespace vantle
