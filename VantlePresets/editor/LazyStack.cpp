// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/LazyStack.h"

#include "VantlePresets/editor/EditorStyle.h"

#include <QtCore/QEvent>
#include <QtCore/QMetaObject>
#include <QtCore/QScopedValueRollback>
#include <QtWidgets/QApplication>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QStyle>

#include <algorithm>

namespace vantle {
namespace {

constexpr int kMinimumWidth = 660;
constexpr int kMaximumColumn = 960;
constexpr int kFirstEstimate = 120;

int heightOf(const QWidget *form, int width)
{
    return form->hasHeightForWidth() ? form->heightForWidth(width) : form->sizeHint().height();
}

} // namespace

LazyStack::LazyStack(QWidget *parent) : QScrollArea(parent), m_content(new QWidget)
{
    setMinimumWidth(kMinimumWidth);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidget(m_content);
    // The host's window shows through.
    viewport()->setAutoFillBackground(false);
    m_content->setAutoFillBackground(false);
    verticalScrollBar()->setSingleStep(24);
    m_content->installEventFilter(this);
}

void LazyStack::setSections(const QList<Section> &sections)
{
    QHash<const void *, QWidget *> formOfKey;
    QList<Slot> leaving;
    for (const Slot &slot : std::as_const(m_slots)) {
        if (!slot.section.fixed && slot.form)
            formOfKey.insert(slot.section.key, slot.form);
    }
    QList<Slot> next;
    QHash<std::pair<int, qsizetype>, qsizetype> placeOfIndex;
    for (const Section &section : sections) {
        QWidget *form = section.fixed ? section.fixed : formOfKey.take(section.key);
        if (form && !section.fixed)
            showInForm(form, section);
        if (!form)
            placeOfIndex.insert({section.kind, section.index}, next.size());
        next.append({section, form});
    }
    for (const Slot &slot : std::as_const(m_slots)) {
        if (formOfKey.contains(slot.section.key))
            leaving.append(slot);
    }
    m_slots = next;
    for (Slot &slot : leaving) {
        const qsizetype place = placeOfIndex.value({slot.section.kind, slot.section.index}, -1);
        if (place < 0) {
            giveBack(slot);
            continue;
        }
        m_slots[place].form = slot.form;
        showInForm(slot.form, m_slots[place].section);
    }
    m_isChainDue = true;
    layOut(0);
    layOutSoon();
}

void LazyStack::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    layOut(0);
    layOutSoon();
}

void LazyStack::scrollContentsBy(int dx, int dy)
{
    QScrollArea::scrollContentsBy(dx, dy);
    layOut(0);
    layOutSoon();
}

bool LazyStack::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_content && event->type() == QEvent::LayoutRequest)
        layOut(0);
    return QScrollArea::eventFilter(watched, event);
}

void LazyStack::layOutSoon()
{
    if (m_isLayoutDue)
        return;
    m_isLayoutDue = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_isLayoutDue = false;
            layOut(viewport()->height() / 2);
        },
        Qt::QueuedConnection);
}

void LazyStack::layOut(int margin)
{
    if (m_isLayingOut || m_slots.isEmpty())
        return;
    const QScopedValueRollback guard(m_isLayingOut, true);
    const int height = viewport()->height();
    const int scrolled = verticalScrollBar()->value();

    // What is at the top of the visible part stays there when a height above it was misjudged.
    qsizetype anchor = 0;
    while (anchor + 1 < m_slots.size() && m_slots[anchor].top + m_slots[anchor].height <= scrolled)
        ++anchor;
    const int before = m_slots[anchor].top;

    m_focused = focusedSlot();
    estimatePlaces();
    recycleBeyond(scrolled - height, scrolled + 2 * height);
    place(scrolled - margin, scrolled + height + margin);
    if (const int shift = m_slots[anchor].top - before; shift != 0 && scrolled > 0 && before > 0) {
        verticalScrollBar()->setValue(scrolled + shift);
        place(scrolled + shift - margin, scrolled + shift + height + margin);
    }
    if (m_isChainDue)
        chainFocus();
}

void LazyStack::estimatePlaces()
{
    int y = kAround;
    for (Slot &slot : m_slots) {
        slot.top = y;
        if (slot.form)
            slot.height = heightOf(slot.form, columnWidth());
        else
            slot.height = m_lastHeight.value(slot.section.kind, kFirstEstimate);
        y += slot.height + kBetweenRows;
    }
}

bool LazyStack::isNear(qsizetype index, int top, int bottom) const
{
    const Slot &slot = m_slots[index];
    const bool isNeighbour = m_focused >= 0 && qAbs(index - m_focused) <= 1;
    return isNeighbour || (slot.top < bottom && slot.top + slot.height > top);
}

void LazyStack::recycleBeyond(int top, int bottom)
{
    for (qsizetype i = 0; i < m_slots.size(); ++i) {
        Slot &slot = m_slots[i];
        if (slot.form && !slot.section.fixed && !isNear(i, top, bottom))
            giveBack(slot);
    }
}

void LazyStack::place(int top, int bottom)
{
    const int width = columnWidth();
    const int contentWidth = std::max(viewport()->width(), kMinimumWidth);
    int y = kAround;
    for (qsizetype i = 0; i < m_slots.size(); ++i) {
        Slot &slot = m_slots[i];
        slot.top = y;
        if (!slot.form && isNear(i, top, bottom)) {
            slot.form = takeForm(slot.section);
            m_isChainDue = true;
        }
        if (slot.form) {
            slot.height = heightOf(slot.form, width);
            m_lastHeight[slot.section.kind] = slot.height;
            const bool isNarrow = slot.form->sizePolicy().horizontalPolicy() == QSizePolicy::Fixed;
            const QRect column((contentWidth - width) / 2, y, width, slot.height);
            const int formWidth = isNarrow ? slot.form->sizeHint().width() : width;
            slot.form->setGeometry(
                QStyle::alignedRect(layoutDirection(), Qt::AlignLeft, {formWidth, slot.height}, column));
            slot.form->show();
        }
        y += slot.height + kBetweenRows;
    }
    m_content->resize(contentWidth, y - kBetweenRows + kAround);
}

int LazyStack::columnWidth() const
{
    return std::min(std::max(viewport()->width(), kMinimumWidth) - 2 * kAround, kMaximumColumn);
}

int LazyStack::columnLeft() const
{
    return viewport()->x() + (std::max(viewport()->width(), kMinimumWidth) - columnWidth()) / 2;
}

QWidget *LazyStack::takeForm(const Section &section)
{
    QList<QWidget *> &spare = m_spareForms[section.kind];
    if (!spare.isEmpty()) {
        QWidget *form = spare.takeLast();
        showInForm(form, section);
        return form;
    }
    QWidget *form = makeForm(section);
    form->setParent(m_content);
    return form;
}

void LazyStack::giveBack(Slot &slot)
{
    slot.form->hide();
    m_spareForms[slot.section.kind].append(slot.form);
    slot.form = nullptr;
}

qsizetype LazyStack::focusedSlot() const
{
    const QWidget *focus = QApplication::focusWidget();
    if (!focus || !m_content->isAncestorOf(focus))
        return -1;
    for (qsizetype i = 0; i < m_slots.size(); ++i) {
        if (m_slots[i].form && (m_slots[i].form == focus || m_slots[i].form->isAncestorOf(focus)))
            return i;
    }
    return -1;
}

/// The Tab key and assistive programs go through the sections in their order, whatever the order in which
/// forms were built.
void LazyStack::chainFocus()
{
    m_isChainDue = false;
    QWidget *last = nullptr;
    for (const Slot &slot : std::as_const(m_slots)) {
        if (!slot.form)
            continue;
        slot.form->raise(); // assistive programs read in the order of the children
        QList<QWidget *> &focusable = m_focusable[slot.form];
        if (focusable.isEmpty()) {
            focusable = slot.form->findChildren<QWidget *>();
            focusable.prepend(slot.form);
            focusable.removeIf([](const QWidget *w) { return !(w->focusPolicy() & Qt::TabFocus); });
        }
        for (QWidget *widget : std::as_const(focusable)) {
            if (last)
                setTabOrder(last, widget);
            last = widget;
        }
    }
}

} // namespace vantle
