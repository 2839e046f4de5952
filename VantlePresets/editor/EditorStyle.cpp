// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/EditorStyle.h"

#include <QtGui/QFontInfo>
#include <QtGui/QFontMetrics>
#include <QtGui/QPainter>
#include <QtGui/QTextDocument>

#include <algorithm>

namespace vantle {

QColor filmTint()
{
    return {0xe8, 0x86, 0x1a};
}

QColor speakerTint()
{
    return {0x2f, 0x7d, 0xe1};
}

QColor trashTint()
{
    return {0xd9, 0x3f, 0x38};
}

QColor mixed(const QColor &from, const QColor &to, double share)
{
    const auto channel = [share](int a, int b) { return qRound(a + (b - a) * share); };
    return {channel(from.red(), to.red()), channel(from.green(), to.green()),
            channel(from.blue(), to.blue())};
}

QColor dimmedText(const QPalette &palette)
{
    return mixed(palette.color(QPalette::WindowText), palette.color(QPalette::Window), 0.36);
}

QFont fontOfSize(const QFont &hostFont, int size, bool bold)
{
    constexpr double kSystemSize = 13;
    constexpr int kSmallest = 11;
    QFont font = hostFont;
    const int pixels = qRound(QFontInfo(hostFont).pixelSize() * size / kSystemSize);
    font.setPixelSize(std::max(pixels, kSmallest));
    font.setBold(bold);
    return font;
}

QString isolated(const QString &text)
{
    constexpr QChar kFirstStrongIsolate(0x2068);
    constexpr QChar kPopIsolate(0x2069);
    return kFirstStrongIsolate + text + kPopIsolate;
}

int warningSignWidth(const QFont &font)
{
    return QFontMetrics(font).height() + kInRow / 2;
}

void paintWarningSign(QPainter &painter, const QPointF &topLeft, const QFont &font)
{
    const double height = QFontMetrics(font).height();
    const QRectF box = QRectF(topLeft, QSizeF(height, height)).adjusted(1, 1.5, -1, -1.5);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(filmTint(), 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(filmTint());
    painter.drawPolygon(
        QPolygonF({QPointF(box.center().x(), box.top()), box.bottomLeft(), box.bottomRight()}));
    painter.setPen(QPen(Qt::white, height / 9, Qt::SolidLine, Qt::RoundCap));
    const double x = box.center().x();
    painter.drawLine(QPointF(x, box.top() + box.height() * 0.4), QPointF(x, box.top() + box.height() * 0.62));
    painter.drawPoint(QPointF(x, box.top() + box.height() * 0.83));
    painter.restore();
}

QString toolTipFor(const QString &text)
{
    return text.isEmpty() ? QString() : Qt::convertFromPlainText(text);
}

} // namespace vantle
