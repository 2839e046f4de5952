// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/TextField.h"

#include <limits>
#include <optional>

namespace vantle {

/// A text field for an integer, shown in the digits 0 to 9 and read in those or as the locale writes it.
/// Text that is no integer of 64 bits changes nothing, whatever stood there on the way to it; a number
/// outside the range counts as the nearest one inside. When the edit ends the field shows what is held.
class IntegerField : public TextField
{
    Q_OBJECT

public:
    explicit IntegerField(QWidget *parent = nullptr);
    IntegerField(qint64 smallest, qint64 largest, QWidget *parent = nullptr);

    void showValue(qint64 value);

    /// Wide enough for the number that is held.
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    void valueEdited(qint64 value);

private:
    void takeText();

    qint64 m_smallest = std::numeric_limits<qint64>::min();
    qint64 m_largest = std::numeric_limits<qint64>::max();
    qint64 m_held = 0;
    std::optional<qint64> m_beforeEdit; ///< while the user types
    bool m_isWriting = false;
};

} // namespace vantle
