// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QStringList>
#include <QtWidgets/QComboBox>

namespace vantle {

/// A picker for one of a few texts. Only the user's own choice is announced: filling and showing are not,
/// and the wheel scrolls the form that the picker stands in.
class ChoiceBox : public QComboBox
{
    Q_OBJECT

public:
    explicit ChoiceBox(QWidget *parent = nullptr);

    /// Replaces the choices; showChoice() what is chosen afterwards.
    void setChoices(const QStringList &choices);
    /// Keeps room for the widest of these texts, whatever the choices are at the moment.
    void reserveWidthFor(const QStringList &texts);

    /// Shows the choice of the number; for -1 the other text, which is then the last entry of the list
    /// for as long as it is shown.
    void showChoice(qsizetype index, const QString &otherText);
    /// Shows the text, whether or not it is among the choices.
    void showText(const QString &text);

    /// The choice as it was given, while the text of its entry is dressed for painting.
    [[nodiscard]] const QString &choice(int index) const { return m_choices.at(index); }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    /// The user chose one of the choices, perhaps the one that is shown already.
    void chosen(int index);

protected:
    /// Elides a text that is wider than the place for it.
    void initStyleOption(QStyleOptionComboBox *option) const override;
    void wheelEvent(QWheelEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    [[nodiscard]] QString dressed(const QString &text) const;

    QStringList m_choices;
    QStringList m_reserved;
    QString m_other; ///< what is shown though it is no choice; else empty
    mutable int m_textWidth = -1;
};

} // namespace vantle
