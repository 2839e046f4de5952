// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/PresetsWindowControllerObjCBridge.h"

#include "VantlePresets/editor/MainThread.h"
#include "VantlePresets/editor/RememberedFrame.h"
#include "VantlePresets/editor/VantleView.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

constexpr QSize kMinimumSize(1080, 700);
constexpr QSize kPreferredSize(1220, 800);

} // namespace

PresetsWindowControllerObjCBridge::PresetsWindowControllerObjCBridge(const QRect &frame, QWidget *parent)
    : QWidget(parent)
{
    requireMainThread();
    setGeometry(frame);
}

std::unique_ptr<PresetsWindowController>
PresetsWindowControllerObjCBridge::makePresetsWindowControllerWithPresetsManager(
    const std::shared_ptr<PresetsManager> &manager)
{
    requireMainThread();
    auto controller = std::make_unique<PresetsWindowController>();
    auto *view = new VantleView(manager);
    auto window = std::make_unique<QMainWindow>();
    window->setCentralWidget(view);
    window->setWindowTitle(view->windowTitle());
    QObject::connect(view, &QWidget::windowTitleChanged, window.get(), &QWidget::setWindowTitle);
    const QSize screen = QGuiApplication::primaryScreen()->availableSize();
    window->resize(kPreferredSize.boundedTo(screen).expandedTo(kMinimumSize));
    window->setMinimumSize(kMinimumSize);
    new RememberedFrame(u"VantleWindowFrame"_s, window.get());
    controller->setWindow(std::move(window));
    return controller;
}

} // namespace vantle
