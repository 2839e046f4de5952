// SPDX-License-Identifier: MIT
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QApplication>

#include <gtest/gtest.h>

/// The editor's tests run without a display, in one style, and on settings of their own.
int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const QTemporaryDir settings;
    QFile screens(settings.filePath(QStringLiteral("screens.json")));
    if (!screens.open(QIODevice::WriteOnly) ||
        screens.write(R"({"screens": [{"name": "tests", "x": 0, "y": 0, "width": 1920, "height": 1200,
                          "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})") < 0)
        return 1;
    screens.close();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screens.fileName().toUtf8());
    qputenv("QT_QPA_PLATFORMTHEME", "");
    qputenv("XDG_CONFIG_HOME", settings.path().toUtf8()); // the programs that tests start have it too
    QCoreApplication::setOrganizationName(QStringLiteral("VantleTests"));
    QCoreApplication::setApplicationName(QStringLiteral("editor"));
    const QApplication application(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    return RUN_ALL_TESTS();
}
