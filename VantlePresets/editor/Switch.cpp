// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/Switch.h"

#include "VantlePresets/editor/EditorStyle.h"

#include <QtGui/QPainter>

namespace vantle {

Switch::Switch(QWidget *parent) : QAbstractButton(parent)
{
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
}

QSize Switch::sizeHint() const
{
    const int height = qMax(18, fontMetrics().height() + 2);
    return {height * 9 / 5, height};
}

void Switch::paintEvent(QPaintEvent *)
{
    const QSize size = sizeHint();
    // Two pixels are left on each side for the focus ring.
    QRectF track(0, 0, size.width(), size.height());
    track.moveCenter(QRectF(rect()).center());
    track.moveLeft(0);
    track.adjust(2, 2, -2, -2);

    const QColor window = palette().color(QPalette::Window);
    const QColor text = palette().color(QPalette::WindowText);
    const QColor accent = palette().color(QPalette::Highlight);
    QColor fill = isChecked() ? accent : mixed(window, text, 0.28);
    if (!isEnabled())
        fill = mixed(fill, window, 0.5);
    if (isDown())
        fill = mixed(fill, text, 0.15);

    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double radius = track.height() / 2;
    if (hasFocus()) {
        painter.setPen(QPen(mixed(accent, text, 0.25), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(track.adjusted(-1.25, -1.25, 1.25, 1.25), radius + 1.25, radius + 1.25);
        track.adjust(0.5, 0.5, -0.5, -0.5);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(track, radius, radius);

    QRectF knob = track.adjusted(1.5, 1.5, -1.5, -1.5);
    knob.setWidth(knob.height());
    // On is at the trailing edge, also where text runs from right to left.
    if (isChecked() != (layoutDirection() == Qt::RightToLeft))
        knob.moveRight(track.right() - 1.5);
    painter.setBrush(palette().color(isChecked() ? QPalette::HighlightedText : QPalette::Base));
    painter.drawEllipse(knob);
}

} // namespace vantle
