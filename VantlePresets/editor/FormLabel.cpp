// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/FormLabel.h"

#include "VantlePresets/editor/EditorStyle.h"

#include <QtGui/QHelpEvent>
#include <QtGui/QPainter>
#include <QtGui/QTextLayout>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>
#include <QtWidgets/QToolTip>

#include <algorithm>

namespace vantle {
namespace {

constexpr int kNoticeLines = 2;

/// The text in the lines of a notice; what is left of it at the end of the last is elided.
QStringList noticeLines(const QString &text, const QFont &font, int width)
{
    QStringList lines;
    QTextLayout layout(text, font);
    layout.beginLayout();
    int from = 0;
    while (lines.size() + 1 < kNoticeLines) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(width);
        lines.append(text.sliced(from, line.textLength()).trimmed());
        from += line.textLength();
    }
    layout.endLayout();
    if (from < text.size())
        lines.append(QFontMetrics(font).elidedText(text.sliced(from), Qt::ElideRight, width));
    return lines;
}

} // namespace

FormLabel::FormLabel(Role role, const QString &text, QWidget *parent) : QLabel(text, parent), m_role(role)
{
    setTextFormat(Qt::PlainText);
    followHostFont();
}

QSize FormLabel::sizeHint() const
{
    const QFontMetrics metrics(font());
    if (m_role == Role::notice)
        return {metrics.horizontalAdvance(text()) + 1, kNoticeLines * metrics.lineSpacing()};
    const int sign = hasSign() ? warningSignWidth(font()) : 0;
    int width = 0;
    for (const QString &line : text().split(u'\n'))
        width = std::max(width, metrics.horizontalAdvance(line));
    return {sign + width + 1, metrics.height()};
}

QSize FormLabel::minimumSizeHint() const
{
    return {0, sizeHint().height()};
}

int FormLabel::heightForWidth(int width) const
{
    if (!hasSign())
        return sizeHint().height();
    const QRect room(0, 0, std::max(1, width - warningSignWidth(font())), 10000);
    return QFontMetrics(font()).boundingRect(room, Qt::TextWordWrap, text()).height();
}

void FormLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const bool isDimmed = m_role == Role::caption || m_role == Role::placeholder;
    painter.setPen(isDimmed ? dimmedText(palette()) : palette().color(QPalette::WindowText));
    if (hasSign())
        return paintBesideSign(painter);
    if (m_role == Role::notice)
        return paintNotice(painter);
    painter.drawText(rect(), static_cast<int>(alignment()) | Qt::TextSingleLine,
                     isolated(QFontMetrics(font()).elidedText(text(), Qt::ElideRight, width())));
}

void FormLabel::paintNotice(QPainter &painter) const
{
    const int step = QFontMetrics(font()).lineSpacing();
    const QStringList lines = noticeLines(text(), font(), width());
    QRect place(0, (height() - static_cast<int>(lines.size()) * step) / 2, width(), step);
    for (const QString &line : lines) {
        painter.drawText(place, static_cast<int>(alignment()) | Qt::TextSingleLine, isolated(line));
        place.translate(0, step);
    }
}

void FormLabel::paintBesideSign(QPainter &painter) const
{
    const int sign = warningSignWidth(font());
    const QRect beside(QPoint(sign, 0), QSize(width() - sign, height()));
    const QRect place = QStyle::visualRect(layoutDirection(), rect(), QRect(0, 0, sign, height()));
    const int gap = layoutDirection() == Qt::RightToLeft ? sign - QFontMetrics(font()).height() : 0;
    const auto paintSign = m_role == Role::error ? paintErrorSign : paintWarningSign;
    paintSign(painter, place.topLeft() + QPoint(gap, 0), font());
    painter.drawText(QStyle::visualRect(layoutDirection(), rect(), beside), Qt::TextWordWrap,
                     isolated(text()));
}

bool FormLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && !hasSign() && toolTip().isEmpty() &&
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
    switch (m_role) {
    case Role::caption:
        return setFont(fontOfSize(QApplication::font(), 11));
    case Role::notice:
    case Role::warning:
    case Role::error:
        return setFont(fontOfSize(QApplication::font(), 12));
    case Role::heading:
        return setFont(fontOfSize(QApplication::font(), 11, true));
    case Role::title:
        return setFont(fontOfSize(QApplication::font(), 15, true));
    case Role::placeholder:
        return setFont(fontOfSize(QApplication::font(), 14));
    }
}

} // namespace vantle
