// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/FieldRow.h"

#include "VantlePresets/core/ProgrammingFault.h"
#include "VantlePresets/editor/EditorStyle.h"
#include "VantlePresets/editor/HintLabel.h"

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

void FieldRow::addField(const QString &caption, const QString &property, QWidget *control, int minimumWidth,
                        const QWidget *below)
{
    auto *label = new FormLabel(FormLabel::Role::caption, caption, this);
    label->setBuddy(control);
    control->setParent(this);
    control->setObjectName(property);
    control->setAccessibleName(caption);
    m_fields.append({label, control, below, nullptr, nullptr, minimumWidth, true});
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

void FieldRow::setHints(const FieldHints &hints, const QString &prefix)
{
    bool isChanged = false;
    for (Field &field : m_fields) {
        const FieldHint hint =
            field.isVisible ? hints.value(prefix + field.control->objectName()) : FieldHint();
        if (!field.hint && hint.phrases.isEmpty())
            continue;
        if (!field.hint)
            field.hint = new HintLabel(field.control, field.caption->text(), this);
        isChanged = field.hint->setHint(hint) || isChanged;
    }
    if (isChanged)
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
    Measure measure{width, 0, 0, place};
    for (const Field &field : m_fields) {
        measure.captionHeight = std::max(measure.captionHeight, field.caption->sizeHint().height());
        measure.controlHeight = std::max(measure.controlHeight, field.control->sizeHint().height());
    }
    QList<Place> line;
    int x = 0;
    int y = 0;
    for (const Field &field : m_fields) {
        if (!field.isVisible || field.below)
            continue;
        if (x > 0 && x + widthOf(field) > width) {
            y += arrangeLine(line, y, measure) + kInRow;
            line.clear();
            x = 0;
        }
        line.append({&field, x});
        x += widthOf(field) + kInRow;
    }
    return y + arrangeLine(line, y, measure);
}

int FieldRow::arrangeLine(const QList<Place> &line, int y, const Measure &measure) const
{
    int height = measure.captionHeight + kBelowCaption + measure.controlHeight;
    int below = 0;
    for (const Place &place : line) {
        if (measure.isPlacing)
            placeField(place, y, measure);
        if (place.field->lineBelow && !place.field->lineBelow->isHidden())
            below = std::max({below, kLineBelowHeight, place.field->lineBelow->sizeHint().height()});
    }
    height += below;
    for (const Place &place : line) {
        HintLabel *const hint = place.field->hint;
        if (!hint || hint->isHidden())
            continue;
        const int width = std::min(hint->sizeHint().width(), measure.width);
        const int hintHeight = hint->heightForWidth(width);
        const int x = std::max(0, std::min(place.x, measure.width - width));
        height += kBelowCaption;
        if (measure.isPlacing)
            setVisualGeometry(hint, {x, y + height, width, hintHeight}, measure.width);
        height += hintHeight;
    }
    QList<Place> under;
    int x = 0;
    for (const Place &place : line) {
        for (const Field &field : m_fields) {
            if (!field.isVisible || field.below != place.field->control)
                continue;
            x = std::max(x, place.x);
            under.append({&field, x});
            x += widthOf(field) + kInRow;
        }
    }
    return under.isEmpty() ? height : height + kInRow + arrangeLine(under, y + height + kInRow, measure);
}

void FieldRow::placeField(const Place &place, int y, const Measure &measure) const
{
    const Field &field = *place.field;
    const int width = std::min(widthOf(field), measure.width);
    setVisualGeometry(field.caption, {place.x, y, width, measure.captionHeight}, measure.width);
    QRect control(place.x, y + measure.captionHeight + kBelowCaption, width, measure.controlHeight);
    const int bottom = control.bottom() + 1;
    // Boxes are all as tall as the tallest of them; a switch keeps its size, in their middle.
    if (qobject_cast<QAbstractButton *>(field.control)) {
        const int own = field.control->sizeHint().height();
        control = {control.x(), control.y() + (control.height() - own) / 2, control.width(), own};
    }
    setVisualGeometry(field.control, control, measure.width);
    if (!field.lineBelow)
        return;
    const QSize line = field.lineBelow->sizeHint();
    const int x = std::max(0, std::min(place.x, measure.width - line.width()));
    setVisualGeometry(field.lineBelow, {x, bottom, line.width(), std::max(kLineBelowHeight, line.height())},
                      measure.width);
}

void FieldRow::setVisualGeometry(QWidget *widget, const QRect &r, int width) const
{
    widget->setGeometry(QStyle::visualRect(layoutDirection(), QRect(0, 0, width, height()), r));
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
