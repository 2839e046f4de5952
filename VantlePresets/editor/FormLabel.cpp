// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/FormLabel.h"

#include "VantlePresets/editor/EditorStyle.h"

#include <QtGui/QHelpEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>
#include <QtWidgets/QToolTip>

#include <algorithm>

namespace vantle {

FormLabel::FormLabel(Voice voice, const QString &text, QWidget *parent) : QLabel(text, parent), m_voice(voice)
{
    setTextFormat(Qt::PlainText);
    followHostFont();
}

QSize FormLabel::sizeHint() const
{
    const QFontMetrics metrics(font());
    const int sign = m_voice == Voice::warning ? warningSignWidth(font()) : 0;
    return {sign + metrics.horizontalAdvance(text()) + 1, metrics.height()};
}

QSize FormLabel::minimumSizeHint() const
{
    return {0, sizeHint().height()};
}

int FormLabel::heightForWidth(int width) const
{
    if (m_voice != Voice::warning)
        return sizeHint().height();
    const QRect room(0, 0, std::max(1, width - warningSignWidth(font())), 10000);
    return QFontMetrics(font()).boundingRect(room, Qt::TextWordWrap, text()).height();
}

void FormLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const bool isDimmed = m_voice == Voice::caption || m_voice == Voice::placeholder;
    painter.setPen(isDimmed ? dimmedText(palette()) : palette().color(QPalette::WindowText));
    if (m_voice == Voice::warning) {
        const int sign = warningSignWidth(font());
        const QRect beside(QPoint(sign, 0), QSize(width() - sign, height()));
        const QRect place = QStyle::visualRect(layoutDirection(), rect(), QRect(0, 0, sign, height()));
        const int gap = layoutDirection() == Qt::RightToLeft ? sign - QFontMetrics(font()).height() : 0;
        paintWarningSign(painter, place.topLeft() + QPoint(gap, 0), font());
        painter.drawText(QStyle::visualRect(layoutDirection(), rect(), beside), Qt::TextWordWrap,
                         isolated(text()));
        return;
    }
    painter.drawText(rect(), static_cast<int>(alignment()) | Qt::TextSingleLine,
                     isolated(QFontMetrics(font()).elidedText(text(), Qt::ElideRight, width())));
}

bool FormLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && m_voice != Voice::warning && toolTip().isEmpty() &&
        sizeHint().width() > width() + 1) {
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
    case Voice::notice:
    case Voice::warning:
        return setFont(fontOfSize(QApplication::font(), 12));
    case Voice::heading:
        return setFont(fontOfSize(QApplication::font(), 11, true));
    case Voice::title:
        return setFont(fontOfSize(QApplication::font(), 15, true));
    case Voice::placeholder:
        return setFont(fontOfSize(QApplication::font(), 14));
    }
}

} // namespace vantle
