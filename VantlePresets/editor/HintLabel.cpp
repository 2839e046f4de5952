// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/HintLabel.h"

namespace vantle {

HintLabel::HintLabel(QWidget *control, const QString &caption, QWidget *parent)
    : FormLabel(Voice::warning, QString(), parent), m_control(control), m_caption(caption)
{
    setObjectName(QStringLiteral("hint"));
    hide();
}

bool HintLabel::setHint(const FieldHint &hint)
{
    const QString sentences = hintText(hint, m_caption);
    const Voice voice = hint.severity == AdviceSeverity::error ? Voice::error : Voice::warning;
    if (sentences == text() && voice == this->voice())
        return false;
    setVoice(voice);
    setText(sentences);
    setVisible(!sentences.isEmpty());
    if (m_control)
        m_control->setAccessibleDescription(sentences);
    return true;
}

} // namespace vantle
