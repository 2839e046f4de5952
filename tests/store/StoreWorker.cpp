// SPDX-License-Identifier: MIT

// Another process with a store of its own, for tests:
//   store_worker save DIR               edits and saves the preset "Victim" until it is killed
//   store_worker churn DIR PREFIX SEED  200 random operations on presets whose names begin with PREFIX
//   store_worker list DIR               prints the names that a fresh start finds

#include "VantlePresets/store/PresetsManager.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

#include <cstdio>
#include <random>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

void saveForever(PresetsManager &manager)
{
    const auto preset = manager.presetWithName(u"Victim"_s);
    static qint64 bitRate = 0;
    preset->videoSettings().first()->setBitRate(++bitRate % 100000);
    manager.save(preset);
    manager.waitForFileTasks();
    QTimer::singleShot(0, &manager, [&manager] { saveForever(manager); });
}

void churn(PresetsManager &manager, const QString &prefix, std::mt19937 &random, int left)
{
    if (left == 0) {
        QCoreApplication::quit();
        return;
    }
    PresetsList mine;
    for (const auto &preset : manager.presets()) {
        if (preset->name().startsWith(prefix))
            mine.append(preset);
    }
    const auto number = [&](unsigned below) { return static_cast<int>(random() % below); };
    const QString name = prefix + u' ' + QString::number(number(12));
    const unsigned operation = mine.isEmpty() ? 0 : random() % 5;
    const auto chosen = mine.isEmpty() ? nullptr : mine[number(static_cast<unsigned>(mine.size()))];
    if (operation <= 1) {
        const auto added = manager.addNewPreset(static_cast<StreamingType>(1 + number(6)));
        if (!manager.rename(added, added->name(), name))
            manager.remove(added);
    } else if (operation == 2) {
        static_cast<void>(manager.rename(chosen, chosen->name(), name));
    } else if (operation == 3) {
        chosen->videoSettings().first()->setBitRate(number(9000));
        manager.save(chosen);
    } else {
        manager.remove(chosen);
    }
    QTimer::singleShot(number(10), &manager,
                       [&manager, prefix, &random, left] { churn(manager, prefix, random, left - 1); });
}

void printNames(const PresetsManager &manager)
{
    for (const auto &preset : manager.presets())
        std::printf("%s\n", qUtf8Printable(preset->name()));
    QCoreApplication::quit();
}

} // namespace
} // namespace vantle

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    vantle::PresetsManager manager([&] { return QStringList{arguments.at(1)}; });
    std::mt19937 random(arguments.size() > 3 ? arguments.at(3).toUInt() : 0);
    QObject::connect(&manager, &vantle::PresetsManager::didLoad, &manager, [&] {
        using namespace Qt::StringLiterals;
        if (arguments.first() == "save"_L1)
            vantle::saveForever(manager);
        else if (arguments.first() == "churn"_L1)
            vantle::churn(manager, arguments.at(2), random, 200);
        else
            vantle::printNames(manager);
    });
    QObject::connect(&manager, &vantle::PresetsManager::startFailed, &manager,
                     [] { QCoreApplication::exit(1); });
    return QCoreApplication::exec();
}
