// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtWidgets/QScrollArea>

namespace vantle {

/// A scrolling column of sections whose forms exist only near the visible part, however many sections
/// there are. Forms that scroll away serve sections that scroll in; until a section has been measured its
/// height is that of the last one of its kind. A form that holds the keyboard focus stays, and so do its
/// neighbours, so that the Tab key always finds the next field.
class LazyStack : public QScrollArea
{
    Q_OBJECT

public:
    struct Section
    {
        const void *key;          ///< the identity of what is shown
        int kind;                 ///< sections of one kind share their forms
        qsizetype index;          ///< the place among the sections of the kind
        QWidget *fixed = nullptr; ///< a widget that is always there; no form is built
    };

    explicit LazyStack(QWidget *parent = nullptr);

    /// Where the centred column begins, in this widget.
    [[nodiscard]] int columnLeft() const;

protected:
    /// A section with the key of an earlier one keeps its form. A form whose section is gone goes to the
    /// section that takes its place.
    void setSections(const QList<Section> &sections);
    [[nodiscard]] QWidget *content() const { return m_content; }

    [[nodiscard]] virtual QWidget *makeForm(const Section &section) = 0;
    virtual void showInForm(QWidget *form, const Section &section) = 0;

    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Slot
    {
        Section section;
        QWidget *form = nullptr;
        int top = 0;
        int height = 0;
    };

    void layOut(int margin);
    void layOutSoon();
    void estimatePlaces();
    void recycleBeyond(int top, int bottom);
    /// Builds what lies in the range and places all that is built.
    void place(int top, int bottom);
    QWidget *takeForm(const Section &section);
    void giveBack(Slot &slot);
    void chainFocus();
    [[nodiscard]] bool isNear(qsizetype index, int top, int bottom) const;
    [[nodiscard]] int columnWidth() const;
    [[nodiscard]] qsizetype focusedSlot() const;

    QWidget *m_content;
    QList<Slot> m_slots;
    QHash<int, QList<QWidget *>> m_spareForms; ///< by kind
    QHash<int, int> m_lastHeight;              ///< by kind
    QHash<const QWidget *, QList<QWidget *>> m_focusable;
    qsizetype m_focused = -1;
    bool m_isLayingOut = false;
    bool m_isLayoutDue = false;
    bool m_isChainDue = false;
};

} // namespace vantle
