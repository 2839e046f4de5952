// SPDX-License-Identifier: MIT
#pragma once

#include <QtWidgets/QLabel>

class QPainter;

namespace vantle {

/// A text of the editor's in one line. What does not fit is elided and shown as tool tip;
/// text() always has the whole of it. A notice has two lines, whatever its length; a warning or an error goes
/// to further lines instead.
class FormLabel : public QLabel
{
    Q_OBJECT

public:
    enum class Role {
        caption,     ///< small and dimmed, above its control
        heading,     ///< small and bold
        title,       ///< large and bold
        placeholder, ///< large and dimmed
        notice,      ///< as the host writes, in the room of two lines
        warning,     ///< beside a sign, in as many lines as it takes
        error,       ///< the same beside a louder sign
    };

    explicit FormLabel(Role role, const QString &text = QString(), QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override { return hasSign(); }
    [[nodiscard]] int heightForWidth(int width) const override;

    [[nodiscard]] Role role() const { return m_role; }

protected:
    void setRole(Role role) { m_role = role; }
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void followHostFont();
    void paintNotice(QPainter &painter) const;
    void paintBesideSign(QPainter &painter) const;
    [[nodiscard]] bool hasSign() const { return m_role == Role::warning || m_role == Role::error; }

    Role m_role;
};

} // namespace vantle
