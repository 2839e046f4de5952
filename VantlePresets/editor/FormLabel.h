// SPDX-License-Identifier: MIT
#pragma once

#include <QtWidgets/QLabel>

namespace vantle {

/// One line of text in one of the editor's voices. What does not fit is elided and shown as tool tip;
/// text() always has the whole of it.
class FormLabel : public QLabel
{
    Q_OBJECT

public:
    enum class Voice {
        caption,     ///< small and dimmed, above its control
        heading,     ///< small and bold
        title,       ///< large and bold
        placeholder, ///< large and dimmed
    };

    explicit FormLabel(Voice voice, const QString &text = QString(), QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void followHostFont();

    Voice m_voice;
};

} // namespace vantle
