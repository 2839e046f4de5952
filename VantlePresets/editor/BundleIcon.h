// SPDX-License-Identifier: MIT
#pragma once

#include <QtGui/QColor>
#include <QtGui/QIcon>
#include <QtWidgets/QWidget>

class QToolButton;

namespace vantle {

/// A picture of the component's bundle in its own colours, sharp at every size and scale.
[[nodiscard]] QIcon bundleIcon(const QString &name);

/// A symbol of the bundle in one colour; without a tint in the text colour of the application's palette,
/// whatever it is when the symbol is painted.
[[nodiscard]] QIcon bundleSymbol(const QString &name, const QColor &tint = QColor());
/// The same in the palette's dimmed text colour.
[[nodiscard]] QIcon dimmedBundleSymbol(const QString &name);

/// A borderless button whose face is an icon; the text is its accessible name and its tool tip.
[[nodiscard]] QToolButton *makeIconButton(const QIcon &icon, const QString &text, const QString &objectName);

/// An icon that stands in a line of text. Decoration only: it takes no focus and has no accessible name.
class SymbolView : public QWidget
{
    Q_OBJECT

public:
    explicit SymbolView(const QIcon &icon, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QIcon m_icon;
};

} // namespace vantle
