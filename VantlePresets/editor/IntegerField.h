// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/TextField.h"

#include <limits>

namespace vantle {

/// A text field for an integer as the locale writes it. Text that is no integer changes nothing; a number
/// outside the range counts as the nearest one inside. When the edit ends the field shows what is held.
class IntegerField : public TextField
{
    Q_OBJECT

public:
    explicit IntegerField(QWidget *parent = nullptr);
    IntegerField(qint64 smallest, qint64 largest, QWidget *parent = nullptr);

    void showValue(qint64 value);

Q_SIGNALS:
    void valueEdited(qint64 value);

private:
    qint64 m_smallest = std::numeric_limits<qint64>::min();
    qint64 m_largest = std::numeric_limits<qint64>::max();
};

} // namespace vantle
