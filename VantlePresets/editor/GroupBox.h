// SPDX-License-Identifier: MIT
#pragma once

#include <QtWidgets/QVBoxLayout>
#include <QtWidgets/QWidget>

namespace vantle {

/// A flat rounded box, a shade apart from the window, whose rows stand one below the other.
class GroupBox : public QWidget
{
    Q_OBJECT

public:
    explicit GroupBox(QWidget *parent = nullptr);

protected:
    [[nodiscard]] QVBoxLayout *rows() const { return m_rows; }
    void paintEvent(QPaintEvent *event) override;

private:
    QVBoxLayout *m_rows;
};

} // namespace vantle
