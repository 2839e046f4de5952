// SPDX-License-Identifier: MIT
#pragma once

#include <QtWidgets/QAbstractButton>

namespace vantle {

/// A switch that is on or off. Clicked or toggled with the space bar; to assistive technology a check box.
class Switch : public QAbstractButton
{
    Q_OBJECT

public:
    explicit Switch(QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace vantle
