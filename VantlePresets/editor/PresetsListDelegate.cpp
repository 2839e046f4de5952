// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/PresetsListDelegate.h"

#include "VantlePresets/editor/BundleIcon.h"
#include "VantlePresets/editor/EditorStyle.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtGui/QTextLayout>
#include <QtWidgets/QLineEdit>

#include <algorithm>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

constexpr auto kByMouse = "lostFocusByMouse";

struct RowParts
{
    QRect row;
    QRect icon;
    QRect name;
    QRect deleteButton;
};

RowParts partsOf(const QRect &wholeRow, Qt::LayoutDirection direction)
{
    const QRect row = wholeRow.adjusted(kInRow, 1, -kInRow, -1);
    const auto visual = [&](const QRect &r) { return QStyle::visualRect(direction, row, r); };
    const int y = row.center().y() - kSymbolSize / 2 + 1;
    const int nameLeft = row.left() + kSymbolSize + 2 * kInRow;
    const int buttonLeft = row.right() - kSymbolSize - kInRow;
    return {row, visual({row.left() + kInRow, y, kSymbolSize, kSymbolSize}),
            visual({nameLeft, row.top(), buttonLeft - kInRow / 2 - nameLeft, row.height()}),
            visual({buttonLeft, y, kSymbolSize, kSymbolSize})};
}

QTextLine layOut(QTextLayout &layout)
{
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    return line;
}

/// Elides the name only when it is too wide: finding out shapes the text, and drawing the shaped text costs
/// half of shaping it twice.
void drawName(QPainter *painter, const QStyleOptionViewItem &option, const QRect &rect, QString name)
{
    name.replace(u'\n', u' '); // which a layout would leave out
    QTextLayout layout(name, option.font);
    QTextOption singleLine;
    singleLine.setWrapMode(QTextOption::NoWrap);
    layout.setTextOption(singleLine);
    QTextLine line = layOut(layout);
    if (line.naturalTextWidth() > rect.width()) {
        layout.setText(option.fontMetrics.elidedText(name, Qt::ElideRight, rect.width()));
        line = layOut(layout);
    }
    const bool isRightToLeft = option.direction == Qt::RightToLeft;
    const double x = isRightToLeft ? rect.right() + 1 - line.naturalTextWidth() : rect.left();
    layout.draw(painter, QPointF(x, rect.top() + (rect.height() - qRound(line.height())) / 2));
}

} // namespace

void PresetsListDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                const QModelIndex &index) const
{
    const RowParts parts = partsOf(option.rect, option.direction);
    const QPalette &palette = option.palette;
    const bool isSelected = option.state & QStyle::State_Selected;
    const bool isUnderPointer = option.state & QStyle::State_MouseOver;
    const bool hasFocus = option.state & QStyle::State_HasFocus;
    const QColor window = palette.color(QPalette::Window);
    QColor text = palette.color(QPalette::WindowText);

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    if (isSelected && hasFocus) {
        painter->setBrush(palette.color(QPalette::Highlight));
        painter->drawRoundedRect(parts.row, 6, 6);
        text = palette.color(QPalette::HighlightedText);
    } else if (isSelected || isUnderPointer) {
        painter->setBrush(mixed(window, text, isSelected ? 0.16 : 0.07));
        painter->drawRoundedRect(parts.row, 6, 6);
    } else if (hasFocus) {
        painter->setBrush(Qt::NoBrush);
        painter->setPen(palette.color(QPalette::Highlight));
        painter->drawRoundedRect(parts.row, 6, 6);
    }

    if (isSelected && hasFocus) {
        // The icons have colours of their own, some near to the accent's.
        painter->setPen(Qt::NoPen);
        painter->setBrush(palette.color(QPalette::HighlightedText));
        painter->drawRoundedRect(parts.icon.adjusted(-2, -2, 2, 2), 4, 4);
    }
    index.data(Qt::DecorationRole).value<QIcon>().paint(painter, parts.icon);
    painter->setPen(text);
    drawName(painter, option, parts.name, index.data(Qt::DisplayRole).toString());
    if (isSelected || isUnderPointer) {
        // On the accent colour the red would not be seen.
        const bool isOnAccent = isSelected && hasFocus;
        bundleSymbol(u"trash"_s, isOnAccent ? text : trashTint()).paint(painter, parts.deleteButton);
    }
    painter->restore();
}

QSize PresetsListDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const
{
    return {0, std::max(option.fontMetrics.height() + 12, 30)};
}

QWidget *PresetsListDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                           const QModelIndex &index) const
{
    auto *field = new QLineEdit(parent);
    field->setObjectName(u"name"_s);
    field->setAccessibleName(tr("Name"));
    field->setAutoFillBackground(true);
    connect(field, &QLineEdit::textEdited, this, &PresetsListDelegate::nameTyped);
    Q_EMIT nameEditBegins(index);
    return field;
}

void PresetsListDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    // Also called when the row's data change, which they do with every key that the user types.
    auto *field = static_cast<QLineEdit *>(editor);
    if (!field->isModified())
        field->setText(index.data(Qt::EditRole).toString());
}

void PresetsListDelegate::setModelData(QWidget *editor, QAbstractItemModel *, const QModelIndex &) const
{
    Q_EMIT nameEditEnds(editor->property(kByMouse).toBool());
}

void PresetsListDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                               const QModelIndex &) const
{
    const RowParts parts = partsOf(option.rect, option.direction);
    const int height = std::min(editor->sizeHint().height(), parts.row.height());
    const QRect field(parts.name.left() - 4, parts.row.center().y() - height / 2, parts.name.width() + 4,
                      height);
    editor->setGeometry(field);
}

QRect PresetsListDelegate::deleteButton(const QRect &row, Qt::LayoutDirection direction)
{
    return partsOf(row, direction).deleteButton.adjusted(-4, -4, 4, 4);
}

bool PresetsListDelegate::eventFilter(QObject *editor, QEvent *event)
{
    if (event->type() == QEvent::FocusOut) {
        // The user is in another application, and comes back to the field.
        const bool isAway = static_cast<QFocusEvent *>(event)->reason() == Qt::ActiveWindowFocusReason &&
                            !QGuiApplication::focusWindow();
        if (isAway)
            return false;
        const bool byMouse = static_cast<QFocusEvent *>(event)->reason() == Qt::MouseFocusReason;
        editor->setProperty(kByMouse, byMouse);
    } else if (event->type() == QEvent::KeyPress) {
        if (static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape)
            Q_EMIT nameEditUndone();
    }
    return QStyledItemDelegate::eventFilter(editor, event);
}

} // namespace vantle
