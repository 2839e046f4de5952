// SPDX-License-Identifier: MIT

// A small host of the presets editor: opens it on a presets folder, or takes a picture of it.

#include "VantlePresets/Version.h"
#include "VantlePresets/core/Log.h"
#include "VantlePresets/editor/PresetsWindowControllerObjCBridge.h"
#include "VantlePresets/store/PresetsFolder.h"
#include "VantlePresets/store/PresetsManager.h"
#include "apps/support/DataDirectory.h"
#include "apps/support/StandardStreams.h"
#include "apps/support/StopOnSignal.h"

#include <CLI/CLI.hpp>

#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtGui/QCursor>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

struct Options
{
    std::string dataDirectory;
    std::string screenshot;
    std::string select;
    std::string size;
    std::string colors;
};

/// Light or dark colours whatever the desktop's are; the editor itself follows its host's palette.
void setColors(const std::string &colors)
{
    const bool isDark = colors == "dark";
    QPalette palette(isDark ? QColor(0x2b, 0x2b, 0x2e) : QColor(0xef, 0xef, 0xef));
    palette.setColor(QPalette::Base, isDark ? QColor(0x1d, 0x1d, 0x20) : QColor(Qt::white));
    palette.setColor(QPalette::Highlight, isDark ? QColor(0x3a, 0x78, 0xc8) : QColor(0x30, 0x8c, 0xc6));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    QApplication::setStyle(u"Fusion"_s);
    QApplication::setPalette(palette);
}

/// "1600x1000"; nothing for any other text.
std::optional<QSize> sizeFromText(const std::string &text)
{
    int width = 0;
    int height = 0;
    char rest = 0;
    if (std::sscanf(text.c_str(), "%dx%d%c", &width, &height, &rest) != 2 || width <= 0 || height <= 0)
        return std::nullopt;
    return QSize(width, height);
}

/// The preset to be shown; null, with a message, when there is none of the name.
std::shared_ptr<VantlePreset> presetToShow(const PresetsManager &manager, const QString &name)
{
    if (name.isEmpty())
        return manager.presets().value(0);
    const auto preset = manager.presetWithName(name);
    if (!preset)
        std::fprintf(stderr, "vantle: no preset named %s\n", qUtf8Printable(escapedControls(name)));
    return preset;
}

std::unique_ptr<PresetsWindowController> makeWindow(const std::shared_ptr<PresetsManager> &manager,
                                                    const Options &options)
{
    auto controller =
        PresetsWindowControllerObjCBridge::makePresetsWindowControllerWithPresetsManager(manager);
    controller->setShowsConnectionRows(true);
    if (const auto size = sizeFromText(options.size))
        controller->window()->resize(*size);
    return controller;
}

/// The process's exit code. Neither the presets' files nor the remembered frame of the window change.
int takePicture(const PresetsManager &store, const Options &options)
{
    const auto manager = std::make_shared<PresetsManager>([] { return QStringList(); }); // it has no files
    manager->setPresets(store.presets());
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());

    const QString name = QString::fromStdString(options.select);
    const auto preset = presetToShow(*manager, name);
    if (!preset && !name.isEmpty())
        return 1;
    manager->setSelectedPreset(preset);
    QCursor::setPos(QGuiApplication::primaryScreen()->geometry().bottomRight()); // no row under the pointer
    const auto controller = makeWindow(manager, options);
    QMainWindow &window = *controller->window();
    window.show();
    // The form follows the selection, and its scroll bars the size of the window, by posted events.
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents();
    if (window.grab().save(QString::fromStdString(options.screenshot)))
        return 0;
    std::fprintf(stderr, "vantle: can't write %s\n", options.screenshot.c_str());
    return 1;
}

/// Complains of a presets folder that is not there: the store would make it, and whoever looks makes none.
bool isMissing(const QString &folder)
{
    std::error_code error; // of what can't be looked at, the store tells why
    const bool isMissing =
        std::filesystem::status(folder.toStdString(), error).type() == std::filesystem::file_type::not_found;
    if (isMissing)
        std::fprintf(stderr, "vantle: %s: there is no such folder\n",
                     qUtf8Printable(escapedControls(folder)));
    return isMissing;
}

int run(const Options &options)
{
    QCoreApplication::setOrganizationName(u"Orvalle"_s);
    QCoreApplication::setApplicationName(u"Vantle"_s);
    QGuiApplication::setDesktopFileName(u"vantle"_s);

    const bool isPicture = !options.screenshot.empty();
    const std::optional<QString> directory = chosenDataDirectory(options.dataDirectory);
    if (isPicture && isMissing(presetsFolderPath(directory.value_or(machineDataDirectories().constFirst()))))
        return 1;
    const auto manager = directory ? std::make_shared<PresetsManager>([&] { return QStringList{*directory}; })
                                   : std::make_shared<PresetsManager>();
    QObject::connect(manager.get(), &PresetsManager::startFailed, qApp, [isPicture](const QString &error) {
        std::fprintf(stderr, "vantle: %s\n", qUtf8Printable(error));
        if (isPicture)
            QCoreApplication::exit(1);
    });
    if (!isPicture) {
        const StopOnSignal stopOnSignal; // quits as the last window does: what was edited is saved
        const auto controller = makeWindow(manager, options);
        if (!options.select.empty()) {
            QObject::connect(manager.get(), &PresetsManager::didLoad, controller.get(), [&] {
                if (const auto preset = presetToShow(*manager, QString::fromStdString(options.select)))
                    manager->setSelectedPreset(preset);
            });
        }
        controller->showWindow();
        return QCoreApplication::exec();
    }
    const auto takeAndQuit = [&] { QCoreApplication::exit(takePicture(*manager, options)); };
    QObject::connect(manager.get(), &PresetsManager::didLoad, qApp, takeAndQuit);
    return QCoreApplication::exec();
}

} // namespace
} // namespace vantle

int main(int argc, char **argv)
try {
    constexpr int kWrongUsage = 2;
    vantle::reserveStandardStreams();
    vantle::Options options;
    CLI::App app{"Edits live-streaming presets", "vantle"};
    app.set_version_flag("--version", std::string("vantle " VANTLE_PRESETS_VERSION_STR));
    app.add_option("--data-dir", options.dataDirectory,
                   "Folder that stands in for VANTLE_DATA_DIR or /var/lib")
        ->type_name("DIR")
        ->check(vantle::dataDirectoryFault);
    app.add_option("--screenshot", options.screenshot, "Write a picture of the window and end")
        ->type_name("FILE");
    app.add_option("--select", options.select, "Open on this preset; in pictures the first by default")
        ->type_name("NAME");
    app.add_option("--size", options.size, "Size of the window")
        ->type_name("WxH")
        ->check([](const std::string &text) {
            return vantle::sizeFromText(text) ? std::string() : "not a size like 1600x1000: " + text;
        });
    app.add_option("--colors", options.colors, "Colours instead of the desktop's")
        ->check(CLI::IsMember({"light", "dark"}));
    // Help and complaints need no display. What begins with one dash may be an option of Qt's, which takes
    // those out when the application is made.
    app.allow_extras(std::any_of(argv + 1, argv + argc, [](const char *argument) {
        return argument[0] == '-' && argument[1] != '\0' && argument[1] != '-';
    }));
    const auto understand = [&]() -> std::optional<int> {
        try {
            app.parse(argc, argv);
            return std::nullopt;
        } catch (const CLI::ParseError &error) {
            return app.exit(error) == 0 ? 0 : kWrongUsage;
        }
    };
    if (const auto end = understand())
        return *end;
    if (options.screenshot.empty())
        vantle::StopOnSignal::block();
    const QApplication application(argc, argv);
    app.allow_extras(false);
    if (const auto end = understand())
        return *end;
    if (!options.colors.empty())
        vantle::setColors(options.colors);
    return vantle::run(options);
} catch (const std::exception &error) {
    std::fprintf(stderr, "vantle: %s\n", error.what());
    return 1;
}
