// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/RememberedFrame.h"

#include <QtCore/QEvent>
#include <QtCore/QSettings>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtWidgets/QWidget>

#include <algorithm>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

constexpr auto kMaximized = ".maximized"_L1;

/// The part of the desktop that shows most of the rectangle.
QRect availableAround(const QRect &rect)
{
    QRect best = QGuiApplication::primaryScreen()->availableGeometry();
    int bestArea = 0;
    for (const QScreen *screen : QGuiApplication::screens()) {
        const QSize shown = screen->availableGeometry().intersected(rect).size();
        if (shown.width() * shown.height() > bestArea) {
            bestArea = shown.width() * shown.height();
            best = screen->availableGeometry();
        }
    }
    return best;
}

} // namespace

RememberedFrame::RememberedFrame(const QString &name, QWidget *window)
    : QObject(window), m_name(name), m_window(window)
{
    constexpr int kSettledAfter = 250;
    m_settled.setSingleShot(true);
    m_settled.setInterval(kSettledAfter);
    connect(&m_settled, &QTimer::timeout, this, &RememberedFrame::store);
    restore();
    window->installEventFilter(this);
}

RememberedFrame::~RememberedFrame()
{
    if (m_settled.isActive())
        store();
}

void RememberedFrame::store()
{
    QSettings settings;
    if (m_frame.isValid())
        settings.setValue(m_name, m_frame);
    settings.setValue(m_name + kMaximized, m_isMaximized);
}

void RememberedFrame::restore()
{
    m_isMaximized = QSettings().value(m_name + kMaximized).toBool();
    if (m_isMaximized)
        m_window->setWindowState(Qt::WindowMaximized);
    QRect frame = QSettings().value(m_name).toRect();
    if (!frame.isValid())
        return;
    const QRect available = availableAround(frame);
    frame.setSize(frame.size().boundedTo(available.size()).expandedTo(m_window->minimumSize()));
    // The title bar stays in reach when the window is larger than the screen.
    frame.moveLeft(std::max(std::min(frame.left(), available.right() - frame.width() + 1), available.left()));
    frame.moveTop(std::max(std::min(frame.top(), available.bottom() - frame.height() + 1), available.top()));
    m_window->setGeometry(frame);
}

bool RememberedFrame::eventFilter(QObject *watched, QEvent *event)
{
    const bool isChange = event->type() == QEvent::Move || event->type() == QEvent::Resize;
    const auto isUsual = [this] { return !(m_window->windowState() & ~Qt::WindowActive); };
    if (isChange && m_window->isVisible() && isUsual()) {
        m_frame = m_window->geometry();
        m_settled.start();
    }
    if (event->type() == QEvent::WindowStateChange && m_window->isVisible() && !m_window->isMinimized()) {
        m_isMaximized = m_window->isMaximized();
        m_settled.start();
    }
    return QObject::eventFilter(watched, event);
}

} // namespace vantle
