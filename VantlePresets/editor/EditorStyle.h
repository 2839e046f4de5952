// SPDX-License-Identifier: MIT
#pragma once

#include <QtGui/QColor>
#include <QtGui/QFont>
#include <QtGui/QPalette>

class QPainter;

namespace vantle {

/// The editor's measures, and the shades and fonts that it derives from the host's palette and font.

inline constexpr int kInRow = 8; ///< between the controls of a row
inline constexpr int kBetweenRows = 12;
inline constexpr int kAround = 16; ///< around a form
inline constexpr int kSymbolSize = 16;

/// The three tints that are the same in every palette.
[[nodiscard]] QColor filmTint();
[[nodiscard]] QColor speakerTint();
[[nodiscard]] QColor trashTint();

/// A shade between two colours: 0 is all `from`, 1 all `to`.
[[nodiscard]] QColor mixed(const QColor &from, const QColor &to, double share);
/// Text that steps back: captions, secondary values.
[[nodiscard]] QColor dimmedText(const QPalette &palette);

/// The host's font in a size that is meant for a system font of 13: 11 gives small captions in
/// proportion to whatever the host uses, never below 11 pixels.
[[nodiscard]] QFont fontOfSize(const QFont &hostFont, int size, bool bold = false);

/// The text in a direction of its own, whatever the direction of what is around it: "1920 x 1080" reads the
/// same in a window from right to left. For painting only.
[[nodiscard]] QString isolated(const QString &text);

/// The sign of a warning, as high as a line of the font, with its top left corner at the point.
void paintWarningSign(QPainter &painter, const QPointF &topLeft, const QFont &font);
/// The same for an error, in another shape and colour.
void paintErrorSign(QPainter &painter, const QPointF &topLeft, const QFont &font);
/// The width that the sign takes, the space behind it included.
[[nodiscard]] int warningSignWidth(const QFont &font);

/// The tool tip that shows the text as it is, in lines that fit the screen: Qt takes any text that looks like
/// markup for markup.
[[nodiscard]] QString toolTipFor(const QString &text);

} // namespace vantle
