// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/EditorStyle.h"

#include <QtCore/QLineF>
#include <QtGui/QFontInfo>
#include <QtGui/QFontMetrics>
#include <QtGui/QPainter>
#include <QtGui/QPolygonF>

#include <algorithm>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

QRectF signBox(const QPointF &topLeft, const QFont &font)
{
    const double height = QFontMetrics(font).height();
    return QRectF(topLeft, QSizeF(height, height)).adjusted(1, 1.5, -1, -1.5);
}

/// A shape with an exclamation mark in the room of it.
void paintSign(QPainter &painter, const QColor &tint, const QPolygonF &shape, const QRectF &mark)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(tint, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(tint);
    painter.drawPolygon(shape);
    painter.setPen(QPen(Qt::white, shape.boundingRect().height() / 8, Qt::SolidLine, Qt::RoundCap));
    const double x = mark.center().x();
    painter.drawLine(QPointF(x, mark.top()), QPointF(x, mark.top() + mark.height() * 0.55));
    painter.drawPoint(QPointF(x, mark.bottom()));
    painter.restore();
}

} // namespace

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
    const QRectF box = signBox(topLeft, font);
    paintSign(painter, filmTint(),
              QPolygonF({{box.center().x(), box.top()}, box.bottomLeft(), box.bottomRight()}),
              QRectF(box.left(), box.top() + box.height() * 0.4, box.width(), box.height() * 0.43));
}

void paintErrorSign(QPainter &painter, const QPointF &topLeft, const QFont &font)
{
    const QRectF box = signBox(topLeft, font);
    QPolygonF octagon;
    for (int corner = 0; corner < 8; ++corner) {
        const QLineF radius = QLineF::fromPolar(box.height() / 2 + 0.5, 22.5 + 45 * corner);
        octagon.append(box.center() + radius.p2());
    }
    paintSign(painter, trashTint(), octagon,
              QRectF(box.left(), box.top() + box.height() * 0.22, box.width(), box.height() * 0.53));
}

QString toolTipFor(const QString &text)
{
    if (text.isEmpty())
        return {};
    return u"<p style=\"white-space: pre-wrap\">%1</p>"_s.arg(text.toHtmlEscaped());
}

} // namespace vantle
