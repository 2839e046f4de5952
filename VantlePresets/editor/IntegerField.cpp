// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/IntegerField.h"

#include <QtCore/QLocale>

#include <algorithm>

namespace vantle {

IntegerField::IntegerField(QWidget *parent) : TextField(parent)
{
    connect(this, &TextField::edited, this, [this](const QString &text) {
        bool isNumber = false;
        const qint64 value = locale().toLongLong(text.trimmed(), &isNumber);
        if (isNumber)
            Q_EMIT valueEdited(std::clamp(value, m_smallest, m_largest));
    });
}

IntegerField::IntegerField(qint64 smallest, qint64 largest, QWidget *parent) : IntegerField(parent)
{
    m_smallest = smallest;
    m_largest = largest;
}

void IntegerField::showValue(qint64 value)
{
    QLocale ungrouped = locale();
    ungrouped.setNumberOptions(QLocale::OmitGroupSeparator);
    TextField::showValue(ungrouped.toString(value));
}

} // namespace vantle
