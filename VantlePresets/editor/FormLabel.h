// SPDX-License-Identifier: MIT
#pragma once

#include <QtWidgets/QLabel>

namespace vantle {

/// A text in one of the editor's voices, in one line. What does not fit is elided and shown as tool tip;
/// text() always has the whole of it. A warning goes to further lines instead.
class FormLabel : public QLabel
{
    Q_OBJECT

public:
    enum class Voice {
        caption,     ///< small and dimmed, above its control
        heading,     ///< small and bold
        title,       ///< large and bold
        placeholder, ///< large and dimmed
        notice,      ///< as the host writes
        warning,     ///< beside a sign, in as many lines as it takes
    };

    explicit FormLabel(Voice voice, const QString &text = QString(), QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override { return m_voice == Voice::warning; }
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void followHostFont();

    Voice m_voice;
};

} // namespace vantle
