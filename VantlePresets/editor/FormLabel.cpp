// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/FormLabel.h"

#include "VantlePresets/editor/EditorStyle.h"

#include <QtGui/QHelpEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QToolTip>

namespace vantle {

FormLabel::FormLabel(Voice voice, const QString &text, QWidget *parent) : QLabel(text, parent), m_voice(voice)
{
    setTextFormat(Qt::PlainText);
    followHostFont();
}

QSize FormLabel::sizeHint() const
{
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(text()) + 1, metrics.height()};
}

QSize FormLabel::minimumSizeHint() const
{
    return {0, sizeHint().height()};
}

void FormLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const bool isDimmed = m_voice == Voice::caption || m_voice == Voice::placeholder;
    painter.setPen(isDimmed ? dimmedText(palette()) : palette().color(QPalette::WindowText));
    painter.drawText(rect(), static_cast<int>(alignment()) | Qt::TextSingleLine,
                     QFontMetrics(font()).elidedText(text(), Qt::ElideRight, width()));
}

bool FormLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && sizeHint().width() > width() + 1) {
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), toolTipFor(text()), this);
        return true;
    }
    return QLabel::event(event);
}

void FormLabel::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::ApplicationFontChange)
        followHostFont();
    QLabel::changeEvent(event);
}

void FormLabel::followHostFont()
{
    switch (m_voice) {
    case Voice::caption:
        return setFont(fontOfSize(QApplication::font(), 11));
    case Voice::heading:
        return setFont(fontOfSize(QApplication::font(), 11, true));
    case Voice::title:
        return setFont(fontOfSize(QApplication::font(), 15, true));
    case Voice::placeholder:
        return setFont(fontOfSize(QApplication::font(), 14));
    }
}

} // namespace vantle
