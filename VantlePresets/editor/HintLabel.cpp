// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/HintLabel.h"

namespace vantle {

HintLabel::HintLabel(QWidget *control, const QString &caption, QWidget *parent)
    : FormLabel(Role::warning, QString(), parent), m_control(control), m_caption(caption)
{
    setObjectName(QStringLiteral("hint"));
    hide();
}

bool HintLabel::setHint(const FieldHint &hint)
{
    const QString sentences = hintText(hint, m_caption);
    const Role severity = hint.severity == AdviceSeverity::error ? Role::error : Role::warning;
    if (sentences == text() && severity == role())
        return false;
    setRole(severity);
    setText(sentences);
    setVisible(!sentences.isEmpty());
    if (m_control)
        m_control->setAccessibleDescription(sentences);
    return true;
}

} // namespace vantle
