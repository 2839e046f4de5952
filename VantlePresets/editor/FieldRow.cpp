// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/FieldRow.h"

#include "VantlePresets/core/ProgrammingFault.h"
#include "VantlePresets/editor/EditorStyle.h"
#include "VantlePresets/editor/FormLabel.h"

#include <QtCore/QEvent>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QStyle>

#include <algorithm>

namespace vantle {
namespace {

constexpr int kBelowCaption = 3;
constexpr int kLineBelowHeight = 18;

} // namespace

FieldRow::FieldRow(QWidget *parent) : QWidget(parent)
{
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void FieldRow::addField(const QString &caption, const QString &property, QWidget *control, int minimumWidth)
{
    auto *label = new FormLabel(FormLabel::Voice::caption, caption, this);
    label->setBuddy(control);
    control->setParent(this);
    control->setObjectName(property);
    control->setAccessibleName(caption);
    m_fields.append({label, control, nullptr, minimumWidth, true});
}

void FieldRow::setLineBelow(QWidget *control, QWidget *line)
{
    line->setParent(this);
    fieldOf(control).lineBelow = line;
}

void FieldRow::setFieldVisible(QWidget *control, bool visible)
{
    Field &field = fieldOf(control);
    if (field.isVisible == visible)
        return;
    field.isVisible = visible;
    field.caption->setVisible(visible);
    field.control->setVisible(visible);
    arrangeAgain();
}

int FieldRow::heightForWidth(int width) const
{
    return arrange(width, false);
}

QSize FieldRow::sizeHint() const
{
    int width = 0;
    for (const Field &field : m_fields)
        width += field.isVisible ? widthOf(field) + kInRow : 0;
    return {width, arrange(width, false)};
}

void FieldRow::resizeEvent(QResizeEvent *)
{
    arrange(width(), true);
}

bool FieldRow::event(QEvent *event)
{
    // No request comes for a text that was changed while the row was hidden.
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Show)
        arrangeAgain();
    return QWidget::event(event);
}

void FieldRow::arrangeAgain()
{
    arrange(width(), true);
    updateGeometry();
}

int FieldRow::arrange(int width, bool place) const
{
    int captionHeight = 0;
    int controlHeight = 0;
    for (const Field &field : m_fields) {
        captionHeight = std::max(captionHeight, field.caption->sizeHint().height());
        controlHeight = std::max(controlHeight, field.control->sizeHint().height());
    }
    const int lineHeight = captionHeight + kBelowCaption + controlHeight;

    int x = 0;
    int y = 0;
    int below = 0; // of the line at y
    for (const Field &field : m_fields) {
        if (!field.isVisible)
            continue;
        const int fieldWidth = widthOf(field);
        if (x > 0 && x + fieldWidth > width) {
            x = 0;
            y += lineHeight + below + kInRow;
            below = 0;
        }
        if (place)
            placeField(field, {x, y, fieldWidth, lineHeight}, captionHeight, width);
        if (field.lineBelow && !field.lineBelow->isHidden())
            below = kLineBelowHeight;
        x += fieldWidth + kInRow;
    }
    return y + lineHeight + below;
}

void FieldRow::placeField(const Field &field, const QRect &cell, int captionHeight, int width) const
{
    const auto setGeometry = [this, width](QWidget *widget, const QRect &r) {
        widget->setGeometry(QStyle::visualRect(layoutDirection(), QRect(0, 0, width, height()), r));
    };
    setGeometry(field.caption, {cell.x(), cell.y(), cell.width(), captionHeight});
    QRect control = cell.adjusted(0, captionHeight + kBelowCaption, 0, 0);
    // Boxes are all as tall as the tallest of them; a switch keeps its size, in their middle.
    if (qobject_cast<QAbstractButton *>(field.control)) {
        const int own = field.control->sizeHint().height();
        control = {control.x(), control.y() + (control.height() - own) / 2, control.width(), own};
    }
    setGeometry(field.control, control);
    if (!field.lineBelow)
        return;
    const int lineWidth = field.lineBelow->sizeHint().width();
    const int x = std::max(0, std::min(cell.x(), width - lineWidth));
    setGeometry(field.lineBelow, {x, cell.y() + cell.height(), lineWidth, kLineBelowHeight});
}

int FieldRow::widthOf(const Field &field)
{
    return std::max(
        {field.minimumWidth, field.control->minimumSizeHint().width(), field.caption->sizeHint().width()});
}

FieldRow::Field &FieldRow::fieldOf(const QWidget *control)
{
    for (Field &field : m_fields) {
        if (field.control == control)
            return field;
    }
    programmingFault("no field of this row");
}

} // namespace vantle
