// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/ChoiceBox.h"

#include "VantlePresets/editor/EditorStyle.h"

#include <QtGui/QWheelEvent>
#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleOption>

#include <algorithm>
#include <utility>

namespace vantle {

ChoiceBox::ChoiceBox(QWidget *parent) : QComboBox(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setMaxVisibleItems(20);
    connect(this, &QComboBox::activated, this, [this](int index) {
        if (index < m_choices.size())
            Q_EMIT chosen(index);
    });
}

/// From right to left "1920 x 1080" would be shown as "x 1080 1920".
QString ChoiceBox::dressed(const QString &text) const
{
    return layoutDirection() == Qt::RightToLeft ? isolated(text) : text;
}

void ChoiceBox::setChoices(const QStringList &choices)
{
    if (choices == m_choices)
        return;
    m_choices = choices;
    m_textWidth = -1;
    clear();
    for (const QString &choice : choices)
        addItem(dressed(choice));
    updateGeometry();
}

void ChoiceBox::reserveWidthFor(const QStringList &texts)
{
    m_reserved = texts;
    m_textWidth = -1;
}

void ChoiceBox::showChoice(qsizetype index, const QString &otherText)
{
    const int other = static_cast<int>(m_choices.size());
    const QString before = std::exchange(m_other, index >= 0 ? QString() : otherText);
    if (index >= 0) {
        setCurrentIndex(static_cast<int>(index));
        removeItem(other);
        setToolTip(QString());
    } else {
        if (count() > other)
            setItemText(other, dressed(otherText));
        else
            addItem(dressed(otherText));
        setCurrentIndex(other);
        setToolTip(toolTipFor(otherText));
    }
    if (m_other != before) {
        m_textWidth = -1;
        updateGeometry();
    }
}

void ChoiceBox::showText(const QString &text)
{
    showChoice(m_choices.indexOf(text), text);
}

QSize ChoiceBox::sizeHint() const
{
    if (m_textWidth < 0) {
        m_textWidth = 0;
        for (const QString &text : m_reserved.isEmpty() ? m_choices : m_reserved)
            m_textWidth = std::max(m_textWidth, fontMetrics().horizontalAdvance(text));
        m_textWidth = std::max(m_textWidth, fontMetrics().horizontalAdvance(m_other));
    }
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const QSize contents(m_textWidth, std::max(fontMetrics().height(), 14));
    return style()->sizeFromContents(QStyle::CT_ComboBox, &option, contents, this);
}

void ChoiceBox::initStyleOption(QStyleOptionComboBox *option) const
{
    QComboBox::initStyleOption(option);
    const QRect field =
        style()->subControlRect(QStyle::CC_ComboBox, option, QStyle::SC_ComboBoxEditField, this);
    option->currentText = fontMetrics().elidedText(option->currentText, Qt::ElideRight, field.width());
}

void ChoiceBox::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

void ChoiceBox::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        m_textWidth = -1;
    if (event->type() == QEvent::LayoutDirectionChange) {
        for (int i = 0; i < count(); ++i)
            setItemText(i, dressed(i < m_choices.size() ? m_choices.at(i) : m_other));
    }
    QComboBox::changeEvent(event);
}

} // namespace vantle
