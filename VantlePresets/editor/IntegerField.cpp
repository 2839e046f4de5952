// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/IntegerField.h"

#include <QtCore/QLocale>
#include <QtCore/QScopedValueRollback>

#include <algorithm>

namespace vantle {
namespace {

/// Nothing for a text that is no number as a whole.
std::optional<qint64> numberOf(const QString &text, const QLocale &locale)
{
    bool isNumber = false;
    QLocale plain = QLocale::c();
    plain.setNumberOptions(QLocale::RejectGroupSeparator);
    qint64 value = plain.toLongLong(text.trimmed(), &isNumber);
    if (!isNumber)
        value = locale.toLongLong(text.trimmed(), &isNumber);
    return isNumber ? std::optional(value) : std::nullopt;
}

} // namespace

IntegerField::IntegerField(QWidget *parent) : TextField(parent)
{
    connect(this, &TextField::edited, this, &IntegerField::takeText);
    connect(this, &QLineEdit::editingFinished, this, [this] { m_beforeEdit.reset(); });
}

IntegerField::IntegerField(qint64 smallest, qint64 largest, QWidget *parent) : IntegerField(parent)
{
    m_smallest = smallest;
    m_largest = largest;
}

void IntegerField::showValue(qint64 value)
{
    const bool isNew = value != m_held;
    m_held = value;
    if (m_beforeEdit && !m_isWriting)
        m_beforeEdit = value; // changed from elsewhere
    TextField::showValue(QString::number(value));
    if (isNew && !isModified())
        updateGeometry();
}

QSize IntegerField::minimumSizeHint() const
{
    const QSize least = TextField::minimumSizeHint();
    constexpr int kFrame = 14; // what styles put around the text, and room for the cursor
    return {std::max(least.width(), fontMetrics().horizontalAdvance(value()) + kFrame), least.height()};
}

/// The text as it stands: without the line break between them, two numbers would be one.
void IntegerField::takeText()
{
    if (!m_beforeEdit)
        m_beforeEdit = m_held;
    const auto number = numberOf(text(), locale());
    const qint64 wanted = number ? std::clamp(*number, m_smallest, m_largest) : *m_beforeEdit;
    const QScopedValueRollback guard(m_isWriting, true);
    Q_EMIT valueEdited(wanted);
    if (!isBeingEdited())
        m_beforeEdit.reset();
}

} // namespace vantle
