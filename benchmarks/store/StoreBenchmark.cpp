// SPDX-License-Identifier: MIT

// The store on folders of many presets, each figure beside a baseline of the same run or a limit. Prints the
// file system that it works on (that of TMPDIR) and a table; exits with 1 when a figure misses its target.

#include "VantlePresets/core/Log.h"
#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/store/PresetsManager.h"
#include "watchfolder/VRXWatchFolder.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>

#include <rapidjson/document.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

bool allMet = true;

double milliseconds(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void report(const char *what, double value, const char *unit, double limit)
{
    const bool isMet = value <= limit;
    allMet = allMet && isMet;
    std::printf("%-62s %9.3f %-5s (target %g) %s\n", what, value, unit, limit, isMet ? "" : "MISSED");
}

/// A data directory with presets of every kind: "Preset 00001", ...
class PresetsOnDisk
{
public:
    explicit PresetsOnDisk(int count)
    {
        std::filesystem::create_directories(folder());
        add(0, count, folder());
    }

    [[nodiscard]] std::filesystem::path folder() const
    {
        return std::filesystem::path(m_data.path().toStdString()) / "Orvalle/Streaming Presets";
    }
    [[nodiscard]] std::filesystem::path aside() const
    {
        return std::filesystem::path(m_data.path().toStdString()) / "aside";
    }
    [[nodiscard]] PresetsManager::DirectoryLookup lookup() const
    {
        return [this] { return QStringList{m_data.path()}; };
    }

    static void add(int first, int count, const std::filesystem::path &folder)
    {
        std::filesystem::create_directories(folder);
        for (int i = first; i < first + count; ++i) {
            const QString name = u"Preset %1"_s.arg(i, 6, 10, QChar(u'0'));
            const auto preset = makePreset(static_cast<StreamingType>(1 + i % 6), name);
            preset->writeToFileAtPath(
                QString::fromStdString((folder / (name.toStdString() + ".json")).string()));
        }
    }

private:
    QTemporaryDir m_data;
};

/// What loading can't do without: list the folder, read each file, parse each text.
std::size_t bareLoad(const std::filesystem::path &folder, unsigned threads)
{
    DIR *const stream = ::opendir(folder.c_str());
    const int directory = ::dirfd(stream);
    std::vector<std::string> names;
    while (const dirent *entry = ::readdir(stream)) {
        if (entry->d_name[0] != '.')
            names.emplace_back(entry->d_name);
    }
    std::atomic<std::size_t> members = 0;
    const auto read = [&](unsigned first) {
        std::string text(64 << 10, '\0');
        for (std::size_t i = first; i < names.size(); i += threads) {
            const int file = ::openat(directory, names[i].c_str(), O_RDONLY | O_CLOEXEC);
            const ssize_t length = ::read(file, text.data(), text.size());
            ::close(file);
            rapidjson::Document json;
            json.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseFullPrecisionFlag |
                       rapidjson::kParseValidateEncodingFlag>(text.data(), static_cast<std::size_t>(length));
            members += json.MemberCount();
        }
    };
    {
        std::vector<std::jthread> helpers;
        for (unsigned i = 1; i < threads; ++i)
            helpers.emplace_back(read, i);
        read(0);
    }
    ::closedir(stream);
    return members;
}

std::unique_ptr<PresetsManager> load(const PresetsOnDisk &presets)
{
    auto manager = std::make_unique<PresetsManager>(presets.lookup());
    QEventLoop loop;
    QObject::connect(manager.get(), &PresetsManager::didLoad, &loop, &QEventLoop::quit);
    QObject::connect(manager.get(), &PresetsManager::startFailed, &loop, &QEventLoop::quit);
    loop.exec();
    return manager;
}

/// Our time as a multiple of the bare loop's.
double loadingRatio(int count, int rounds)
{
    const PresetsOnDisk presets(count);
    std::vector<double> ours;
    std::vector<double> bare;
    std::vector<double> bareOnAll;
    const unsigned threads = std::max(1U, std::thread::hardware_concurrency());
    for (int round = 0; round < rounds; ++round) {
        bare.push_back(milliseconds([&] { bareLoad(presets.folder(), 1); }));
        bareOnAll.push_back(milliseconds([&] { bareLoad(presets.folder(), threads); }));
        std::unique_ptr<PresetsManager> manager;
        ours.push_back(milliseconds([&] { manager = load(presets); }));
        if (manager->presets().size() != count)
            std::abort();
    }
    std::printf("loading %d presets: %.1f ms, bare loop %.1f ms (medians of %d)\n", count, median(ours),
                median(bare), rounds);
    std::printf("  on as many threads (%u) as ours: %.1f ms, ours is %.2f times that\n", threads,
                median(bareOnAll), median(ours) / median(bareOnAll));
    return median(ours) / median(bare);
}

void measureLoading()
{
    report("10,000 presets until the list is published / bare loop", loadingRatio(10000, 9), "x", 1.3);
}

void measureGrowth()
{
    // The bare loop itself grows more than tenfold: ten times the files do not fit into the caches.
    report("the same ratio for 100,000 presets / for 10,000",
           loadingRatio(100000, 5) / loadingRatio(10000, 9), "x", 1.2);
}

/// How long the main thread is kept from a timer that wants to fire every millisecond.
class Heartbeat
{
public:
    Heartbeat()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            m_gaps.push_back(static_cast<double>(m_clock.nsecsElapsed()) / 1e6);
            m_clock.restart();
            const double cpu = cpuMilliseconds();
            m_slices.push_back(cpu - std::exchange(m_cpu, cpu));
        });
        m_clock.start();
        m_timer.start(1);
    }

    void print()
    {
        m_timer.stop();
        std::sort(m_gaps.begin(), m_gaps.end());
        std::sort(m_slices.begin(), m_slices.end());
        const auto at = static_cast<std::size_t>(static_cast<double>(m_gaps.size() - 1) * 0.999);
        report("main thread held while they come in, 99.9th percentile", m_gaps[at], "ms", 8);
        report("the same in CPU time of its slices", m_slices[at], "ms", 8);
        report("main thread held while they come in, maximum", m_gaps.back(), "ms", 16);
    }

private:
    /// Of this thread; what other processes take of the machine is not in it.
    static double cpuMilliseconds()
    {
        timespec time = {};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    }

    QTimer m_timer;
    QElapsedTimer m_clock;
    double m_cpu = cpuMilliseconds();
    std::vector<double> m_gaps;
    std::vector<double> m_slices;
};

void measureDrop()
{
    constexpr int kCount = 10000;
    const PresetsOnDisk presets(0);
    PresetsOnDisk::add(0, kCount, presets.aside());
    const auto manager = load(presets);
    Heartbeat heartbeat;
    QEventLoop loop;
    QObject::connect(manager.get(), &PresetsManager::presetsChanged, &loop, [&](const PresetsList &list) {
        if (list.size() == kCount)
            loop.quit();
    });
    QProcess copier;
    copier.start(u"sh"_s,
                 {u"-c"_s, u"cp -r \"$0\"/. \"$1\""_s, QString::fromStdString(presets.aside().string()),
                  QString::fromStdString(presets.folder().string())});
    QElapsedTimer copying;
    copying.start();
    qint64 copied = 0;
    QObject::connect(&copier, &QProcess::finished, &loop, [&] { copied = copying.elapsed(); });
    const double time = milliseconds([&] { loop.exec(); });
    std::printf("%d presets dropped in by another process: all listed after %.0f ms, ", kCount, time);
    if (copied > 0)
        std::printf("%.0f ms after its %lld ms of copying\n", time - static_cast<double>(copied),
                    static_cast<long long>(copied));
    else
        std::printf("before it had ended\n");
    heartbeat.print();
    copier.waitForFinished();
}

void measureOperations()
{
    const PresetsOnDisk presets(10000);
    const auto manager = load(presets);
    std::vector<double> add;
    std::vector<double> rename;
    std::vector<double> select;
    std::vector<double> save;
    std::vector<double> remove;
    for (int i = 0; i < 200; ++i) {
        std::shared_ptr<VantlePreset> preset;
        add.push_back(milliseconds([&] { preset = manager->addNewPreset(StreamingType::youTube); }));
        rename.push_back(milliseconds([&] {
            manager->rename(preset, preset->name(), u"Preset %1 b"_s.arg(i * 49, 6, 10, QChar(u'0')));
        }));
        const auto other = manager->presets()[i * 37];
        select.push_back(milliseconds([&] { manager->setSelectedPreset(other); }));
        save.push_back(milliseconds([&] { manager->save(other); }));
        remove.push_back(milliseconds([&] { manager->remove(preset); }));
        QCoreApplication::processEvents();
    }
    manager->waitForFileTasks();
    report("add in a list of 10,000, main thread, median", median(add), "ms", 1);
    report("rename", median(rename), "ms", 1);
    report("select", median(select), "ms", 1);
    report("remove", median(remove), "ms", 1);
    report("save of a typical preset, main thread's share", 1000 * median(save), "us", 50);
}

/// A whole save with the system calls alone: temporary file, write, fsync, rename, fsync of the folder.
void bareSave(const std::filesystem::path &folder, const QByteArray &document)
{
    const int directory = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const int file = ::openat(directory, ".bare", O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    const bool isWritten =
        ::write(file, document.constData(), static_cast<std::size_t>(document.size())) == document.size();
    if (!isWritten || ::fsync(file) != 0 || ::renameat(directory, ".bare", directory, "bare") != 0 ||
        ::fsync(directory) != 0)
        std::abort();
    ::close(file);
    ::close(directory);
}

void measureSave()
{
    const PresetsOnDisk presets(10);
    const auto manager = load(presets);
    const auto preset = manager->presets().first();
    std::vector<double> ours;
    std::vector<double> bare;
    for (qint64 i = 0; i < 200; ++i) {
        preset->videoSettings().first()->setBitRate(i);
        const QByteArray document = preset->encoded(document::Format::compact);
        bare.push_back(milliseconds([&] { bareSave(presets.folder(), document); }));
        ours.push_back(milliseconds([&] {
            manager->save(preset);
            manager->waitForFileTasks();
        }));
    }
    std::printf("a whole save: %.3f ms, bare system calls %.3f ms (medians of 200)\n", median(ours),
                median(bare));
    report("a whole save / bare system calls", median(ours) / median(bare), "x", 1.2);
}

} // namespace
} // namespace vantle

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    vantle::setLogSink([](const QString &) {});
    std::printf(
        "file system of %s: %s\n", qUtf8Printable(QDir::tempPath()),
        qUtf8Printable(vantle::fileSystemTypeName(QDir::tempPath()).value_or(QStringLiteral("unknown"))));
    const std::string wanted = argc > 1 ? argv[1] : "";
    const std::pair<const char *, void (*)()> measurements[] = {{"loading", vantle::measureLoading},
                                                                {"growth", vantle::measureGrowth},
                                                                {"drop", vantle::measureDrop},
                                                                {"operations", vantle::measureOperations},
                                                                {"save", vantle::measureSave}};
    for (const auto &[name, measure] : measurements) {
        if (std::string(name).find(wanted) != std::string::npos)
            measure();
    }
    return vantle::allMet ? 0 : 1;
}
