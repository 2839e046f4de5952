// SPDX-License-Identifier: MIT
// A host whose main loop is GLib's, as that of a GTK or GStreamer application: it follows the list of presets
// without ever running Qt's own loop.
#include <glib-unix.h>
#include <glib.h>

#include "VantlePresets/store/PresetsManager.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>

#include <cstdio>

namespace {

void printNames(const vantle::PresetsManager &manager)
{
    QStringList names;
    for (const auto &preset : manager.presets())
        names.append(preset->name());
    std::printf("presets: %s\n", qUtf8Printable(names.join(QStringLiteral(", "))));
    std::fflush(stdout);
}

gboolean quitOnSignal(gpointer loop)
{
    g_main_loop_quit(static_cast<GMainLoop *>(loop));
    return G_SOURCE_CONTINUE;
}

} // namespace

int main(int argc, char **argv)
{
    // Where Qt was built with GLib, its events come from GLib's default context from here on.
    const QCoreApplication application(argc, argv);
    if (!QAbstractEventDispatcher::instance()->inherits("QEventDispatcherGlib")) {
        std::fputs("glib_host: Qt does not run on GLib here; is QT_NO_GLIB set?\n", stderr);
        return 1;
    }
    QCommandLineParser options;
    options.addHelpOption();
    options.addOption({QStringLiteral("data-dir"), QStringLiteral("Folder that stands in for /var/lib"),
                       QStringLiteral("DIR"), QStringLiteral("/var/lib")});
    options.process(application);

    int result = 0;
    GMainLoop *const loop = g_main_loop_new(nullptr, FALSE);
    g_unix_signal_add(SIGINT, quitOnSignal, loop);
    g_unix_signal_add(SIGTERM, quitOnSignal, loop);
    {
        // Goes before the loop does, and waits for the files that are being written.
        const vantle::PresetsManager manager(
            [&] { return QStringList{options.value(QStringLiteral("data-dir"))}; });
        const auto print = [&manager] { printNames(manager); };
        QObject::connect(&manager, &vantle::PresetsManager::didLoad, &manager, [&manager, print] {
            print();
            QObject::connect(&manager, &vantle::PresetsManager::presetsChanged, &manager, print);
        });
        const auto fail = [&result, loop](const QString &error) {
            std::fprintf(stderr, "glib_host: %s\n", qUtf8Printable(error));
            result = 1;
            g_main_loop_quit(loop);
        };
        QObject::connect(&manager, &vantle::PresetsManager::startFailed, &manager, fail);
        g_main_loop_run(loop);
    }
    g_main_loop_unref(loop);
    return result;
}
