// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/GroupBox.h"

#include "VantlePresets/editor/EditorStyle.h"

#include <QtGui/QPainter>
#include <QtWidgets/QAccessibleWidget>

namespace vantle {

namespace {

constexpr auto kIsGroup = "vantleIsGroup";

QAccessibleInterface *groupInterface(const QString &, QObject *object)
{
    if (!object || !object->isWidgetType() || !object->property(kIsGroup).toBool())
        return nullptr;
    return new QAccessibleWidget(static_cast<QWidget *>(object), QAccessible::Grouping);
}

} // namespace

void GroupBox::announceAsGroup(QWidget *widget)
{
    static const bool isInstalled = [] {
        QAccessible::installFactory(groupInterface);
        return true;
    }();
    static_cast<void>(isInstalled);
    widget->setProperty(kIsGroup, true);
}

GroupBox::GroupBox(QWidget *parent) : QWidget(parent), m_rows(new QVBoxLayout(this))
{
    m_rows->setContentsMargins(kBetweenRows, kBetweenRows, kBetweenRows, kBetweenRows);
    m_rows->setSpacing(kInRow);
    announceAsGroup(this);
}

void GroupBox::paintEvent(QPaintEvent *)
{
    const QColor window = palette().color(QPalette::Window);
    const QColor text = palette().color(QPalette::WindowText);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(mixed(window, text, 0.13));
    painter.setBrush(mixed(window, text, 0.04));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
}

} // namespace vantle
