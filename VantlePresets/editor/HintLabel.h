// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/FieldHints.h"
#include "VantlePresets/editor/FormLabel.h"

namespace vantle {

/// A hint in as many lines as it takes, hidden while there is none. Assistive programs have it as the
/// description of the control that it is about.
class HintLabel : public FormLabel
{
    Q_OBJECT

public:
    /// Without a control for a hint on a whole group or list. The caption is the control's.
    explicit HintLabel(QWidget *control = nullptr, const QString &caption = QString(),
                       QWidget *parent = nullptr);

    /// Whether what is shown changed.
    bool setHint(const FieldHint &hint);

private:
    QWidget *m_control;
    QString m_caption;
};

} // namespace vantle
