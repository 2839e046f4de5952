// SPDX-License-Identifier: MIT

// The editor's window without a display, each figure beside a baseline of the same run or a limit. Prints a
// table; exits with 1 when a figure misses its target.

#include "VantlePresets/core/Log.h"
#include "VantlePresets/editor/FieldHints.h"
#include "VantlePresets/editor/PresetFormView.h"
#include "VantlePresets/editor/PresetsListView.h"
#include "VantlePresets/editor/PresetsWindowControllerObjCBridge.h"
#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/store/PresetsManager.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <vector>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

/// Knows which frames were painted, and how long that took.
class Application : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject *receiver, QEvent *event) override
    {
        const bool isFrame = event->type() == QEvent::UpdateRequest;
        if (event->type() == QEvent::Paint) {
            listPaints += receiver == list ? 1 : 0;
            formPaints += receiver->inherits("vantle::VideoSettingsView") ? 1 : 0;
        }
        QElapsedTimer timer;
        timer.start();
        const bool result = QApplication::notify(receiver, event);
        if (isFrame) {
            ++frames;
            painting += timer.nsecsElapsed();
        }
        return result;
    }

    const QObject *list = nullptr; ///< the list's viewport
    int listPaints = 0;
    int formPaints = 0;
    int frames = 0;
    qint64 painting = 0; ///< nanoseconds
};

bool allMet = true;

double millisecondsSince(const QElapsedTimer &timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double quantile(std::vector<double> values, double share)
{
    std::sort(values.begin(), values.end());
    const auto last = static_cast<double>(values.size() - 1);
    return values[static_cast<std::size_t>(last * share + 0.5)];
}

double median(const std::vector<double> &values)
{
    return quantile(values, 0.5);
}

/// A row of the table: what was measured, its bound, and the one against the other.
void report(const QString &what, double value, const char *unit, double bound)
{
    const bool isMet = value <= bound;
    allMet = allMet && isMet;
    std::printf("%-62s %8.3f %-5s bound %4g %-5s ratio %.2f%s\n", qUtf8Printable(what), value, unit, bound,
                unit, value / bound, isMet ? "" : " MISSED");
    std::fflush(stdout);
}

/// A data directory with a store on it.
class Store
{
public:
    explicit Store(int count)
    {
        std::filesystem::create_directories(folder());
        std::filesystem::create_directories(aside());
        fill(folder(), count);
        m_manager = std::make_shared<PresetsManager>([this] { return QStringList{m_data.path()}; });
        while (!m_manager->isLoaded())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    static void fill(const std::filesystem::path &target, int count)
    {
        for (int i = 0; i < count; ++i) {
            const QString name = u"Preset "_s + QString::number(i).rightJustified(5, u'0');
            const auto preset = makePreset(streamingTypes().values().at(i % 6), name);
            preset->writeToFileAtPath(QString::fromStdString(target.string()) + u'/' + name + ".json"_L1);
        }
    }

    [[nodiscard]] std::filesystem::path folder() const { return root() / "Orvalle/Streaming Presets"; }
    [[nodiscard]] std::filesystem::path aside() const { return root() / "aside"; }
    [[nodiscard]] const std::shared_ptr<PresetsManager> &manager() const { return m_manager; }

private:
    [[nodiscard]] std::filesystem::path root() const { return m_data.path().toStdString(); }

    QTemporaryDir m_data;
    std::shared_ptr<PresetsManager> m_manager;
};

std::unique_ptr<PresetsWindowController> makeWindow(const Store &store)
{
    auto controller =
        PresetsWindowControllerObjCBridge::makePresetsWindowControllerWithPresetsManager(store.manager());
    controller->window()->resize(1220, 800);
    return controller;
}

/// Works through events, painting included, until there was one more of what is counted.
void process(const int &count)
{
    const int before = count;
    do
        QCoreApplication::processEvents();
    while (count == before);
}

double firstPaint(Application &application, const Store &store)
{
    QCoreApplication::processEvents(); // what the window before this one left behind
    QElapsedTimer timer;
    timer.start();
    const auto controller = makeWindow(store);
    application.list = controller->window()->findChild<PresetsListView *>()->viewport();
    controller->showWindow();
    if (application.listPaints == 0) // some platforms paint inside show()
        process(application.listPaints);
    application.list = nullptr;
    application.listPaints = 0;
    return millisecondsSince(timer);
}

void measureFirstPaint(Application &application)
{
    const Store few(10);
    const Store full(30); // as many rows as the window shows
    const Store many(10000);
    constexpr int kRounds = 61;
    std::vector<double> withFew;
    std::vector<double> withFull;
    std::vector<double> withMany;
    for (int i = 0; i < kRounds; ++i) {
        withFew.push_back(firstPaint(application, few));
        withFull.push_back(firstPaint(application, full));
        withMany.push_back(firstPaint(application, many));
    }
    std::printf("first paint: 10 presets %.2f ms, 30 presets %.2f ms, 10,000 presets %.2f ms (medians)\n",
                median(withFew), median(withFull), median(withMany));
    report("first paint, 10,000 presets against a full list"_L1, median(withMany) / median(withFull), "times",
           1.3);
}

std::shared_ptr<VantlePreset> add(const Store &store, int entries)
{
    auto preset = store.manager()->addNewPreset(StreamingType::srt);
    VideoSettingsList renditions;
    AudioSettingsList tracks;
    for (int i = 0; i < entries; ++i) {
        renditions.append(VideoSettings::create());
        tracks.append(AudioSettings::create());
    }
    preset->setVideoSettings(renditions);
    preset->setAudioSettings(tracks);
    return preset;
}

PresetFormView &shownForm(const PresetsWindowController &controller)
{
    for (auto *form : controller.window()->findChildren<PresetFormView *>()) {
        if (form->isVisible())
            return *form;
    }
    programmingFault("no form is shown");
}

/// As the arrow keys do it, from the change of the row to the painted form, the save included.
double select(const Application &application, const Store &store, PresetsListView &list,
              const std::shared_ptr<VantlePreset> &preset)
{
    QElapsedTimer timer;
    timer.start();
    list.setCurrentIndex(list.model()->index(store.manager()->rowOf(preset), 0));
    process(application.formPaints);
    return millisecondsSince(timer);
}

/// They are worked out when typing pauses: the next keystroke may have to wait for them.
void measureHints(const VantlePreset &preset)
{
    std::vector<double> times;
    for (int i = 0; i < 61; ++i) {
        QElapsedTimer timer;
        timer.start();
        if (hintsFor(preset).isEmpty())
            programmingFault("nothing to say about so many streams with one identifier");
        times.push_back(millisecondsSince(timer));
    }
    report("the hints of 200 + 200 worked out"_L1, median(times), "ms", 4);
}

void measureSelecting(const Application &application)
{
    const Store store(20);
    const std::vector small{add(store, 2), add(store, 2)};
    const std::vector large{add(store, 200), add(store, 200)};
    const auto otherKind = store.manager()->presetWithName(u"Preset 00002"_s);
    const auto controller = makeWindow(store);
    controller->showWindow();
    auto &list = *controller->window()->findChild<PresetsListView *>();

    constexpr std::size_t kRounds = 60;
    std::vector<double> ofSmall;
    std::vector<double> ofLarge;
    std::vector<double> afterOtherKind;
    for (std::size_t i = 0; i < kRounds; ++i) {
        ofSmall.push_back(select(application, store, list, small[i % 2]));
        if (shownForm(*controller).preset() != small[i % 2])
            programmingFault("the form does not show the selected preset");
        ofLarge.push_back(select(application, store, list, large[i % 2]));
        select(application, store, list, otherKind);
        afterOtherKind.push_back(select(application, store, list, small[i % 2]));
        store.manager()->waitForFileTasks();
    }
    report("selecting a preset of 2 + 2 to its form painted"_L1, median(ofSmall), "ms", 16);
    report("the same, coming from another kind's form"_L1, median(afterOtherKind), "ms", 16);
    report("200 + 200 against 2 + 2"_L1, median(ofLarge) / median(ofSmall), "times", 2);

    for (const auto *property : {"bitRate", "trackName"}) {
        auto fields = shownForm(*controller).findChildren<QLineEdit *>(QString::fromLatin1(property));
        fields.removeIf([](const QLineEdit *field) { return !field->isVisible(); });
        QLineEdit *field = fields.first();
        field->setFocus();
        std::vector<double> keys;
        for (int i = 0; i < 200; ++i) {
            QElapsedTimer timer;
            timer.start();
            QKeyEvent press(QEvent::KeyPress, i % 2 ? Qt::Key_Backspace : Qt::Key_7, {},
                            i % 2 ? u""_s : u"7"_s);
            QCoreApplication::sendEvent(field, &press);
            process(application.frames);
            keys.push_back(millisecondsSince(timer));
        }
        const QString what = "a keystroke in "_L1 + QLatin1StringView(property) + ", painted: "_L1;
        report(what + "median"_L1, median(keys), "ms", 4);
        report(what + "95th percentile"_L1, quantile(keys, 0.95), "ms", 4);
    }
    measureHints(*large.front());
}

/// From the store's change to the list laid out, the new preset's selection included.
double insertion(int rows)
{
    PresetsList presets;
    for (int i = 0; i < rows; ++i)
        presets.append(makePreset(StreamingType::hls, u"Preset "_s + QString::number(i)));
    const auto manager = std::make_shared<PresetsManager>([] { return QStringList(); });
    manager->setPresets(presets);
    const auto controller =
        PresetsWindowControllerObjCBridge::makePresetsWindowControllerWithPresetsManager(manager);
    controller->showWindow();
    const auto &list = *controller->window()->findChild<PresetsListView *>();
    std::vector<double> times;
    for (int i = 0; i < 61; ++i) {
        QCoreApplication::processEvents();
        QElapsedTimer timer;
        timer.start();
        const auto added = manager->addNewPreset(StreamingType::hls);
        static_cast<void>(list.visualRect(list.model()->index(manager->rowOf(added), 0)));
        times.push_back(millisecondsSince(timer));
    }
    return median(times);
}

void measureInsertion()
{
    report("an insertion into 10,000 rows, beyond that into 10"_L1, insertion(10000) - insertion(10), "ms",
           2);
}

void measureDrop(Application &application)
{
    constexpr int kDropped = 10000;
    const Store store(10);
    Store::fill(store.aside(), kDropped);
    const auto controller = makeWindow(store);
    controller->showWindow();
    store.manager()->setSelectedPreset(store.manager()->presets().first());
    QCoreApplication::processEvents();

    // A heart beat: what lies between two beats, less their distance and the painting, held the loop.
    constexpr double kBeat = 1;
    std::vector<double> held;
    QElapsedTimer sinceBeat;
    qint64 paintedBefore = application.painting;
    QTimer beat;
    beat.setTimerType(Qt::PreciseTimer);
    QObject::connect(&beat, &QTimer::timeout, &beat, [&] {
        const double painting = static_cast<double>(application.painting - paintedBefore) / 1e6;
        held.push_back(std::max(0.0, millisecondsSince(sinceBeat) - kBeat - painting));
        paintedBefore = application.painting;
        sinceBeat.restart();
    });
    QElapsedTimer total;
    total.start();
    QProcess copy;
    copy.setWorkingDirectory(QString::fromStdString(store.aside().string()));
    copy.start(u"sh"_s,
               {u"-c"_s, u"for f in *; do echo \"$f\"; done | sed 's/.*/\"&\"/' | xargs cp -t \"$0\""_s,
                QString::fromStdString(store.folder().string())});
    if (!copy.waitForStarted())
        programmingFault("no shell");
    sinceBeat.start();
    beat.start(static_cast<int>(kBeat));
    // The ten that were there already are among them.
    while (store.manager()->presets().size() < kDropped)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    beat.stop();
    std::printf("10,000 presets dropped into the folder: all listed after %.0f ms, %zu beats, %d frames\n",
                millisecondsSince(total), held.size(), application.frames);
    std::printf("event loop held: median %.2f ms, maximum %.2f ms\n", median(held), quantile(held, 1));
    report("event loop held while they arrive, 99.9th percentile"_L1, quantile(held, 0.999), "ms", 8);
}

} // namespace
} // namespace vantle

int main(int argc, char **argv)
{
    using namespace vantle;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    QCoreApplication::setOrganizationName(QStringLiteral("VantleBenchmarks"));
    Application application(argc, argv);
    setLogSink([](const QString &) {});
    measureFirstPaint(application);
    measureSelecting(application);
    measureInsertion();
    measureDrop(application);
    return allMet ? 0 : 1;
}
