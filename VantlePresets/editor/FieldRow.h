// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QList>
#include <QtWidgets/QWidget>

namespace vantle {

class FormLabel;

/// Controls side by side, each below its caption, all on one line; what does not fit goes to a further
/// line. A field is as wide as it says or as its control and caption need, so that rows of the same
/// fields line up.
class FieldRow : public QWidget
{
    Q_OBJECT

public:
    explicit FieldRow(QWidget *parent = nullptr);

    /// The control takes the caption as its accessible name, and the property's name as object name.
    void addField(const QString &caption, const QString &property, QWidget *control, int minimumWidth);
    /// A line of text below the field, 18 points high. It may be wider than the field.
    void setLineBelow(QWidget *control, QWidget *line);
    void setFieldVisible(QWidget *control, bool visible);

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
        QWidget *lineBelow;
        int minimumWidth;
        bool isVisible;
    };

    void arrangeAgain();
    /// Places the fields when told to; the height that they take.
    int arrange(int width, bool place) const;
    void placeField(const Field &field, const QRect &cell, int captionHeight, int width) const;
    [[nodiscard]] static int widthOf(const Field &field);
    [[nodiscard]] Field &fieldOf(const QWidget *control);

    QList<Field> m_fields;
};

} // namespace vantle
