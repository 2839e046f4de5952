// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/BundleIcon.h"

#include "VantlePresets/core/ResourceBundle.h"
#include "VantlePresets/editor/EditorStyle.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QIconEngine>
#include <QtGui/QPainter>
#include <QtGui/QPixmapCache>
#include <QtSvg/QSvgRenderer>
#include <QtWidgets/QToolButton>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

enum class Coloring { own, tint, text, dimmedText };

/// Renders the vector picture for the very pixels that are asked for; nothing is scaled afterwards.
class BundleIconEngine : public QIconEngine
{
public:
    BundleIconEngine(const QString &name, Coloring coloring, const QColor &tint)
        : m_name(name), m_coloring(coloring), m_tint(tint)
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        const double ratio = painter->device()->devicePixelRatioF();
        const QSize size = rect.size() * ratio;
        if (m_last.isNull() || m_last.size() != size || m_lastMode != mode || m_lastColor != color()) {
            m_last = rendered(size, mode);
            m_last.setDevicePixelRatio(ratio);
            m_lastMode = mode;
            m_lastColor = color();
        }
        painter->drawPixmap(rect, m_last);
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State) override
    {
        return rendered(size, mode);
    }

    [[nodiscard]] QIconEngine *clone() const override
    {
        return new BundleIconEngine(m_name, m_coloring, m_tint);
    }

private:
    [[nodiscard]] QPixmap rendered(const QSize &size, QIcon::Mode mode) const
    {
        const QColor tint = color();
        const QString key = u"vantle:%1:%2x%3:%4:%5"_s.arg(
            m_name, QString::number(size.width()), QString::number(size.height()),
            QString::number(tint.rgba()), QString::number(mode));
        QPixmap picture;
        if (QPixmapCache::find(key, &picture))
            return picture;
        picture = QPixmap(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        if (mode == QIcon::Disabled)
            painter.setOpacity(0.4);
        QSvgRenderer(resourceImage(m_name)).render(&painter);
        if (m_coloring != Coloring::own) {
            painter.setOpacity(1);
            painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
            painter.fillRect(picture.rect(), tint);
        }
        painter.end();
        QPixmapCache::insert(key, picture);
        return picture;
    }

    [[nodiscard]] QColor color() const
    {
        switch (m_coloring) {
        case Coloring::own:
        case Coloring::tint:
            return m_tint;
        case Coloring::text:
            return QGuiApplication::palette().color(QPalette::ButtonText);
        case Coloring::dimmedText:
            return dimmedText(QGuiApplication::palette());
        }
        return {};
    }

    QString m_name;
    Coloring m_coloring;
    QColor m_tint;

    QPixmap m_last; ///< as it was painted last
    QIcon::Mode m_lastMode = QIcon::Normal;
    QColor m_lastColor;
};

} // namespace

QIcon bundleIcon(const QString &name)
{
    return QIcon(new BundleIconEngine(name, Coloring::own, QColor()));
}

QIcon bundleSymbol(const QString &name, const QColor &tint)
{
    return QIcon(new BundleIconEngine(name, tint.isValid() ? Coloring::tint : Coloring::text, tint));
}

QIcon dimmedBundleSymbol(const QString &name)
{
    return QIcon(new BundleIconEngine(name, Coloring::dimmedText, QColor()));
}

QToolButton *makeIconButton(const QIcon &icon, const QString &text, const QString &objectName)
{
    auto *button = new QToolButton;
    button->setObjectName(objectName);
    button->setAccessibleName(text);
    button->setToolTip(text);
    button->setIcon(icon);
    button->setIconSize({kSymbolSize, kSymbolSize});
    button->setAutoRaise(true);
    return button;
}

SymbolView::SymbolView(const QIcon &icon, QWidget *parent) : QWidget(parent), m_icon(icon)
{
    setFixedSize(kSymbolSize, kSymbolSize);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SymbolView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    m_icon.paint(&painter, rect());
}

} // namespace vantle
