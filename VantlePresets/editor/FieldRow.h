// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/FieldHints.h"

#include <QtCore/QList>
#include <QtWidgets/QWidget>

namespace vantle {

class FormLabel;
class HintLabel;

/// Controls side by side, each below its caption, all on one line; what does not fit goes to a further
/// line. A field is as wide as it says or as its control and caption need, so that rows of the same
/// fields line up.
class FieldRow : public QWidget
{
    Q_OBJECT

public:
    explicit FieldRow(QWidget *parent = nullptr);

    /// The control takes the caption as its accessible name, and the property's name as object name. With
    /// `below` the field stands on a line of its own that begins under that control.
    void addField(const QString &caption, const QString &property, QWidget *control, int minimumWidth,
                  const QWidget *below = nullptr);
    /// A line of text below the field, at least 18 points high. It may be wider than the field.
    void setLineBelow(QWidget *control, QWidget *line);
    void setFieldVisible(QWidget *control, bool visible);

    /// Shows under each field what there is for its place, which is the prefix and the property's name.
    void setHints(const FieldHints &hints, const QString &prefix);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return {0, heightForWidth(width())}; }

protected:
    void resizeEvent(QResizeEvent *event) override;
    bool event(QEvent *event) override;

private:
    struct Field
    {
        FormLabel *caption;
        QWidget *control;
        const QWidget *below; ///< the control under which the field stands, or null
        QWidget *lineBelow;
        HintLabel *hint; ///< made when there is something to say
        int minimumWidth;
        bool isVisible;
    };
    struct Place
    {
        const Field *field;
        int x;
    };
    /// What a line of fields is made of while it is placed, or only measured.
    struct Measure
    {
        int width;
        int captionHeight;
        int controlHeight;
        bool isPlacing;
    };

    void arrangeAgain();
    /// Places the fields when told to; the height that they take.
    int arrange(int width, bool place) const;
    /// The fields of one line, what stands below them, and the fields under them; the height of all.
    int arrangeLine(const QList<Place> &line, int y, const Measure &measure) const;
    void placeField(const Place &place, int y, const Measure &measure) const;
    void setVisualGeometry(QWidget *widget, const QRect &r, int width) const;
    [[nodiscard]] static int widthOf(const Field &field);
    [[nodiscard]] Field &fieldOf(const QWidget *control);

    QList<Field> m_fields;
};

} // namespace vantle
