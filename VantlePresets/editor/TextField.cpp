// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/TextField.h"

#include <QtCore/QMetaObject>

namespace vantle {

TextField::TextField(QWidget *parent) : QLineEdit(parent)
{
    connect(this, &QLineEdit::textEdited, this, &TextField::edited);
    connect(this, &QLineEdit::editingFinished, this, &TextField::endEdit);
}

void TextField::showValue(const QString &text)
{
    m_value = text;
    if (isBeingEdited() || text == this->text())
        return;
    setText(text);
    setCursorPosition(0);
}

void TextField::carryEditOver()
{
    if (!isBeingEdited() || text() == m_value)
        return;
    // Not at once: whoever replaced the object is still at work, and would take the text for its own.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (isBeingEdited() && text() != m_value)
                Q_EMIT edited(text());
        },
        Qt::QueuedConnection);
}

void TextField::endEdit()
{
    setModified(false);
    showValue(QString(m_value));
}

} // namespace vantle
