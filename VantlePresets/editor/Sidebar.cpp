// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/Sidebar.h"

#include "VantlePresets/editor/BundleIcon.h"
#include "VantlePresets/editor/EditorStyle.h"
#include "VantlePresets/editor/NotificationCenter.h"
#include "VantlePresets/editor/PresetsListView.h"

#include <QtGui/QPainter>
#include <QtGui/QShortcut>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QToolButton>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

constexpr int kSidebarMinimum = 220;
constexpr int kSidebarMaximum = 320;

} // namespace

Sidebar::Sidebar(const std::shared_ptr<PresetsManager> &manager, QWidget *parent)
    : QWidget(parent), m_manager(manager), m_list(new PresetsListView(manager))
{
    setMinimumWidth(kSidebarMinimum);
    setMaximumWidth(kSidebarMaximum);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, kInRow, 0, kInRow);
    layout->setSpacing(kInRow);
    layout->addWidget(makeFindField());
    layout->addWidget(m_list, 1);
    auto *below = new QHBoxLayout;
    below->setContentsMargins(kBetweenRows, 0, kBetweenRows, 0);
    below->addWidget(makeAddButton());
    below->addStretch();
    layout->addLayout(below);
}

void Sidebar::paintEvent(QPaintEvent *)
{
    const QColor window = palette().color(QPalette::Window);
    const QColor text = palette().color(QPalette::WindowText);
    QPainter painter(this);
    painter.fillRect(rect(), mixed(window, text, 0.025));
    const int x = layoutDirection() == Qt::LeftToRight ? width() - 1 : 0;
    painter.fillRect(x, 0, 1, height(), mixed(window, text, 0.13));
}

QWidget *Sidebar::makeFindField()
{
    auto *line = new QWidget;
    auto *layout = new QHBoxLayout(line);
    layout->setContentsMargins(kInRow, 0, kInRow, 0);
    m_find = new QLineEdit;
    m_find->setObjectName(u"find"_s);
    m_find->setAccessibleName(tr("Find Presets"));
    m_find->setPlaceholderText(tr("Name or kind"));
    m_find->setClearButtonEnabled(true);
    layout->addWidget(m_find);
    line->hide();
    connect(m_find, &QLineEdit::textChanged, m_list, &PresetsListView::setFilter);
    connect(m_list, &PresetsListView::filterMustEnd, this, &Sidebar::closeFind);
    // In the list, too; not while the field is hidden, when the key is the host's.
    m_endFind = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    m_endFind->setContext(Qt::WidgetWithChildrenShortcut);
    m_endFind->setEnabled(false);
    connect(m_endFind, &QShortcut::activated, this, [this] {
        closeFind();
        m_list->setFocus();
    });
    auto *down = new QShortcut(QKeySequence(Qt::Key_Down), line);
    down->setContext(Qt::WidgetWithChildrenShortcut);
    connect(down, &QShortcut::activated, m_list, &PresetsListView::goToShown);
    connect(m_find, &QLineEdit::returnPressed, m_list, &PresetsListView::goToShown);
    return line;
}

void Sidebar::openFind()
{
    show();
    m_find->parentWidget()->show();
    m_endFind->setEnabled(true);
    m_find->setFocus(Qt::ShortcutFocusReason);
    m_find->selectAll();
}

void Sidebar::closeFind()
{
    if (m_find->parentWidget()->isHidden())
        return;
    const bool hadFocus = m_find->hasFocus();
    m_find->parentWidget()->hide();
    m_endFind->setEnabled(false);
    m_find->clear();
    if (hadFocus)
        m_list->setFocus();
}

QToolButton *Sidebar::makeAddButton()
{
    auto *menu = new QMenu(this);
    for (const StreamingType type : streamingTypes().values()) {
        const QString label = displayName(type);
        connect(menu->addAction(bundleIcon(label), label), &QAction::triggered, this,
                [this, type] { addPreset(type); });
    }
    auto *button = makeIconButton(bundleSymbol(u"plus"_s), tr("Add Preset"), u"addPreset"_s);
    // Not the button's own menu: that one would be run in an event loop of its own.
    connect(button, &QToolButton::clicked, menu,
            [button, menu] { menu->popup(button->mapToGlobal(QPoint(0, -menu->sizeHint().height()))); });
    return button;
}

void Sidebar::addPreset(StreamingType type)
{
    closeFind();
    m_list->endNameEdit();
    saveBeforeLeaving(*m_manager);
    m_manager->addNewPreset(type);
    NotificationCenter::defaultCenter().post(kFocusPresetsListNotification);
}

} // namespace vantle
