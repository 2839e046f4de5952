// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/TextField.h"

#include "VantlePresets/core/Log.h"

#include <QtCore/QMetaObject>
#include <QtCore/QScopedValueRollback>
#include <QtGui/QKeyEvent>

namespace vantle {

TextField::TextField(QWidget *parent) : QLineEdit(parent)
{
    // Not textEdited(), which knows of no assistive programs.
    connect(this, &QLineEdit::textChanged, this, &TextField::takeEdit);
    connect(this, &QLineEdit::editingFinished, this, &TextField::endEdit);
}

void TextField::showValue(const QString &text)
{
    m_value = text;
    if (isBeingEdited() || text == this->text())
        return;
    const QScopedValueRollback guard(m_isShowing, true);
    setText(text);
    setCursorPosition(0);
}

void TextField::takeEdit(const QString &text)
{
    if (m_isShowing)
        return;
    Q_EMIT edited(withoutControls(text));
    if (!isBeingEdited())
        showValue(QString(m_value));
}

bool TextField::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo)) {
            event->ignore();
            return true;
        }
    }
    return QLineEdit::event(event);
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
                Q_EMIT edited(withoutControls(text()));
        },
        Qt::QueuedConnection);
}

void TextField::endEdit()
{
    setModified(false);
    showValue(QString(m_value));
}

QString withoutControls(QString text)
{
    return text.removeIf(isControl);
}

} // namespace vantle
