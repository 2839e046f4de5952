// SPDX-License-Identifier: MIT
#pragma once

#include <QtWidgets/QLabel>

class QPainter;

namespace vantle {

/// A text in one of the editor's voices, in one line. What does not fit is elided and shown as tool tip;
/// text() always has the whole of it. A notice has two lines, whatever its length; a warning or an error goes
/// to further lines instead.
class FormLabel : public QLabel
{
    Q_OBJECT

public:
    enum class Voice {
        caption,     ///< small and dimmed, above its control
        heading,     ///< small and bold
        title,       ///< large and bold
        placeholder, ///< large and dimmed
        notice,      ///< as the host writes, in the room of two lines
        warning,     ///< beside a sign, in as many lines as it takes
        error,       ///< the same beside a louder sign
    };

    explicit FormLabel(Voice voice, const QString &text = QString(), QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override { return hasSign(); }
    [[nodiscard]] int heightForWidth(int width) const override;

    [[nodiscard]] Voice voice() const { return m_voice; }

protected:
    void setVoice(Voice voice) { m_voice = voice; }
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void followHostFont();
    void paintNotice(QPainter &painter) const;
    void paintBesideSign(QPainter &painter) const;
    [[nodiscard]] bool hasSign() const { return m_voice == Voice::warning || m_voice == Voice::error; }

    Voice m_voice;
};

} // namespace vantle
