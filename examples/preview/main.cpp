// SPDX-License-Identifier: MIT
// A host with a window: a video preview whose menu opens the editor and begins the stream.
#include "PreviewWindow.h"

#include <QtCore/QCommandLineParser>
#include <QtWidgets/QApplication>

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    // The editor keeps its window's place in QSettings.
    QApplication::setOrganizationName(QStringLiteral("Vantle Examples"));
    QCommandLineParser options;
    options.addHelpOption();
    options.addOption({QStringLiteral("data-dir"), QStringLiteral("Folder that stands in for /var/lib"),
                       QStringLiteral("DIR"), QStringLiteral("/var/lib")});
    options.process(application);

    const auto manager = std::make_shared<vantle::PresetsManager>(
        [&] { return QStringList{options.value(QStringLiteral("data-dir"))}; });
    PreviewWindow window(manager);
    window.show();
    return QApplication::exec();
}
