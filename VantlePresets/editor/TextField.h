// SPDX-License-Identifier: MIT
#pragma once

#include <QtWidgets/QLineEdit>

namespace vantle {

/// A text field that writes while the user types and never loses what was typed to a change from
/// elsewhere: such a change shows up when the edit has ended. Text that an assistive program sets is an edit
/// that has ended at once. Control characters, which a paste can bring, are no part of what is announced.
///
/// Undo and redo are not the field's own: the window undoes edits of fields of all sorts.
class TextField : public QLineEdit
{
    Q_OBJECT

public:
    explicit TextField(QWidget *parent = nullptr);

    /// Shows what the model holds; during an edit, when it has ended.
    void showValue(const QString &text);

    /// The field now stands for another object that takes the place of the first: what the user is
    /// typing is announced again, on the next turn of the event loop.
    void carryEditOver();
    /// The field is about to show something else altogether: what is typed belongs to the past.
    void endEdit();
    /// Whether the text is the user's, in a field that has the focus, and not yet what the model made of it.
    [[nodiscard]] bool isBeingEdited() const { return isModified() && hasFocus(); }

    [[nodiscard]] QSize sizeHint() const override { return minimumSizeHint(); }

Q_SIGNALS:
    /// The text was changed, but not by the model.
    void edited(const QString &text);

protected:
    bool event(QEvent *event) override;
    /// What showValue() was told last.
    [[nodiscard]] const QString &value() const { return m_value; }

private:
    void takeEdit(const QString &text);

    QString m_value;
    bool m_isShowing = false;
};

/// The text without its control characters, line breaks included.
[[nodiscard]] QString withoutControls(QString text);

} // namespace vantle
