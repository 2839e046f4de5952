// SPDX-License-Identifier: MIT

// A store in a process of its own that does what an editor's user might do, as fast as it can:
//   soak_manager DIR SEED LOG
// Lines of its input: "go" starts the operations, "stop" ends them, "list" answers with a line for each
// preset of the list, its name and its document, and an empty one.
//
// A preset whose name begins with "Keep" is never removed. The second word of its name is also its first
// track's name, and no other preset ever gets it.

#include "VantlePresets/core/Log.h"
#include "VantlePresets/store/PresetsManager.h"
#include "tests/soak/SoakListing.h"
#include "watchfolder/VRXWatchFolder.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <cstdio>
#include <random>
#include <utility>

#include <unistd.h>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype kManyPresets = 40;
constexpr qsizetype kManyKept = 10;

class SoakManager : public QObject
{
public:
    SoakManager(const QString &dataDirectory, unsigned seed)
        : m_random(seed), m_manager([&] { return QStringList{dataDirectory}; })
    {
        connect(&m_manager, &PresetsManager::nameEditMustEnd, this, [this] { finishNameEdit(); });
        connect(&m_manager, &PresetsManager::didLoad, this, [] {
            std::puts("loaded");
            std::fflush(stdout);
        });
        connect(&m_manager, &PresetsManager::startFailed, this, [] { QCoreApplication::exit(1); });
    }

    void obey(const QByteArray &command)
    {
        m_isRunning = command == "go";
        if (m_isRunning)
            operateSoon();
        else if (command == "list")
            list();
    }

private:
    unsigned below(qsizetype limit)
    {
        return static_cast<unsigned>(m_random() % static_cast<unsigned>(limit));
    }

    void operateSoon()
    {
        QTimer::singleShot(below(20), this, [this] {
            if (!m_isRunning)
                return;
            operate();
            operateSoon();
        });
    }

    void operate()
    {
        finishNameEdit();
        const PresetsList presets = m_manager.presets();
        const qsizetype kept = std::count_if(presets.begin(), presets.end(), isKept);
        if (presets.isEmpty() || below(8) == 0) {
            add(kept < kManyKept && below(2) == 0);
            return;
        }
        const auto preset = presets[below(presets.size())];
        const bool areMany = presets.size() - kept > kManyPresets;
        switch (below(areMany ? 3 : 9)) {
        case 0:
        case 1:
        case 2:
            if (!isKept(preset))
                m_manager.remove(preset);
            break;
        case 3:
            rename(preset);
            break;
        case 4:
            beginNameEdit(preset);
            break;
        case 5:
            m_manager.setSelectedPreset(below(3) == 0 ? nullptr : preset);
            break;
        case 6:
            if (!isKept(preset))
                m_manager.duplicate(preset);
            break;
        default:
            preset->videoSettings().first()->setBitRate(below(9000));
            m_manager.save(preset);
        }
    }

    static bool isKept(const std::shared_ptr<VantlePreset> &preset)
    {
        return preset->name().startsWith("Keep "_L1);
    }

    void add(bool isToBeKept)
    {
        const auto added = m_manager.addNewPreset(static_cast<StreamingType>(1 + below(6)));
        if (!isToBeKept)
            return;
        const QString mark = u"%1-%2"_s.arg(::getpid()).arg(++m_marks);
        added->audioSettings().first()->setTrackName(mark);
        m_manager.rename(added, added->name(), u"Keep "_s + mark);
    }

    QString newName(const VantlePreset &preset)
    {
        const QStringList words = preset.name().split(u' ');
        return words.first() == "Keep"_L1 && words.size() > 1
                   ? u"Keep %1 %2"_s.arg(words[1]).arg(below(1000000))
                   : u"Other %1"_s.arg(below(20));
    }

    void rename(const std::shared_ptr<VantlePreset> &preset)
    {
        m_manager.rename(preset, preset->name(), newName(*preset));
    }

    void beginNameEdit(const std::shared_ptr<VantlePreset> &preset)
    {
        m_edited = preset;
        m_nameBefore = preset->name();
        m_manager.beginNameEdit(preset);
        preset->setName(newName(*preset));
    }

    void finishNameEdit()
    {
        const auto edited = std::exchange(m_edited, nullptr);
        m_manager.endNameEdit();
        if (edited && m_manager.rowOf(edited) >= 0)
            m_manager.rename(edited, m_nameBefore, edited->name());
    }

    /// Answers when nothing is under way: no save, and no change of others that has not been heard of.
    void list()
    {
        finishNameEdit();
        for (const auto &preset : PresetsList(m_manager.presets())) {
            if (m_manager.hasUnsavedEdits(preset)) // an earlier save has failed
                m_manager.save(preset);
        }
        m_manager.waitForFileTasks();
        m_manager.watchFolder()->flush([this] {
            QMetaObject::invokeMethod(
                this, [this] { answerWhenSaved(); }, Qt::QueuedConnection);
        });
    }

    void answerWhenSaved()
    {
        if (m_manager.hasPendingSaves()) {
            QTimer::singleShot(1, this, [this] { answerWhenSaved(); });
            return;
        }
        for (const QByteArray &line : listingOf(m_manager))
            std::puts(line.constData());
        std::puts("");
        std::fflush(stdout);
    }

    std::mt19937 m_random;
    PresetsManager m_manager;
    bool m_isRunning = false;
    int m_marks = 0;
    std::shared_ptr<VantlePreset> m_edited;
    QString m_nameBefore;
};

} // namespace
} // namespace vantle::test

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    FILE *const log = std::fopen(argv[3], "ae");
    vantle::setLogSink([log](const QString &line) {
        std::fprintf(log, "%d %s\n", ::getpid(), qUtf8Printable(line));
        std::fflush(log);
    });
    vantle::test::SoakManager manager(arguments.at(1), arguments.at(2).toUInt());
    QByteArray input;
    QSocketNotifier commands(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&commands, &QSocketNotifier::activated, &manager, [&] {
        char buffer[256];
        const ssize_t size = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (size <= 0) {
            QCoreApplication::quit();
            return;
        }
        input.append(buffer, size);
        for (qsizetype end; (end = input.indexOf('\n')) >= 0; input.remove(0, end + 1))
            manager.obey(input.first(end));
    });
    return QCoreApplication::exec();
}
