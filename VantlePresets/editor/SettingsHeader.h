// SPDX-License-Identifier: MIT
#pragma once

#include <QtGui/QIcon>
#include <QtWidgets/QWidget>

class QToolButton;

namespace vantle {

class FormLabel;

/// The first line of a group: symbol, bold text, and a remove button where entries can be removed.
class SettingsHeader : public QWidget
{
    Q_OBJECT

public:
    /// `list` is the property that the remove button changes; without it there is no button.
    SettingsHeader(const QIcon &symbol, const QString &list, QWidget *parent = nullptr);

    void setText(const QString &text);

Q_SIGNALS:
    void removeClicked();

private:
    FormLabel *m_text;
};

} // namespace vantle
