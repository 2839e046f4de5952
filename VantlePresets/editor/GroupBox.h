// SPDX-License-Identifier: MIT
#pragma once

#include <QtWidgets/QVBoxLayout>
#include <QtWidgets/QWidget>

namespace vantle {

/// A flat rounded box, a shade apart from the window, whose rows stand one below the other. To assistive
/// programs a group, with its accessible name.
class GroupBox : public QWidget
{
    Q_OBJECT

public:
    explicit GroupBox(QWidget *parent = nullptr);

    /// Makes a widget of any class a group to assistive programs; without this they pass it over, and its
    /// name with it.
    static void announceAsGroup(QWidget *widget);

protected:
    [[nodiscard]] QVBoxLayout *rows() const { return m_rows; }
    void paintEvent(QPaintEvent *event) override;

private:
    QVBoxLayout *m_rows;
};

} // namespace vantle
