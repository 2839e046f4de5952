// SPDX-License-Identifier: MIT
// The editor in a host of another project: the window opens, follows the store, and finds its pictures.
// Argument: a folder to work in.
#include "VantlePresets/editor/NotificationCenter.h"
#include "VantlePresets/editor/PresetsWindowControllerObjCBridge.h"
#include "VantlePresets/store/PresetsManager.h"

#include <QtCore/QSettings>
#include <QtWidgets/QApplication>

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QString folder = QString::fromLocal8Bit(argv[1]);
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder);

    const auto manager = std::make_shared<vantle::PresetsManager>([&] { return QStringList{folder}; });
    const auto controller =
        vantle::PresetsWindowControllerObjCBridge::makePresetsWindowControllerWithPresetsManager(manager);
    controller->showWindow();
    bool isFocused = false;
    QObject::connect(
        &vantle::NotificationCenter::defaultCenter(), &vantle::NotificationCenter::posted, &application,
        [&](const QString &name) { isFocused = isFocused || name == vantle::kFocusPresetsListNotification; });
    QObject::connect(manager.get(), &vantle::PresetsManager::didLoad, &application, [&] {
        manager->addNewPreset(vantle::StreamingType::youTube);
        vantle::NotificationCenter::defaultCenter().post(vantle::kFocusPresetsListNotification);
        QCoreApplication::processEvents();
        const bool isShown =
            controller->window()->windowTitle().startsWith(QStringLiteral("YouTube Preset")) &&
            !controller->window()->grab().isNull();
        QCoreApplication::exit(isShown && isFocused ? 0 : 1);
    });
    QObject::connect(manager.get(), &vantle::PresetsManager::startFailed, &application,
                     [] { QCoreApplication::exit(1); });
    return QCoreApplication::exec();
}
