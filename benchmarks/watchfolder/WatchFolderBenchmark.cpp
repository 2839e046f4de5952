// SPDX-License-Identifier: MIT
// Measures the watcher against the least that any watcher has to do, in the same run, and prints the ratios
// with their limits. Medians of several runs. Exits with 1 when a limit is exceeded.
#include "benchmarks/watchfolder/BareLoops.h"
#include "tests/watchfolder/HoldableQueue.h"
#include "watchfolder/KernelEventStream.h"
#include "watchfolder/VRXWatchFolder.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QTimer>

#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <thread>

using namespace vantle;
using namespace vantle::benchmark;
namespace fs = std::filesystem;

namespace {

using Clock = std::chrono::steady_clock;

bool allWithinLimits = true;

void report(const std::string &what, double value, const char *unit, double limit)
{
    const bool isWithin = value <= limit;
    allWithinLimits = allWithinLimits && isWithin;
    std::printf("%-66s %9.2f %-6s (limit %.2f)%s\n", what.c_str(), value, unit, limit,
                isWithin ? "" : "  EXCEEDED");
    std::fflush(stdout);
}

void note(const std::string &what, double value, const char *unit)
{
    std::printf("  %-64s %9.2f %s\n", what.c_str(), value, unit);
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double milliseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

double processCpuMilliseconds()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    const auto ms = [](const timeval &time) {
        return 1000.0 * static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1000.0;
    };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

template <class Condition>
void spinUntil(const Condition &condition)
{
    const QDeadlineTimer deadline(std::chrono::minutes(2));
    while (!condition()) {
        if (deadline.hasExpired())
            throw std::runtime_error("the watcher did not get there");
        QTimer::singleShot(std::chrono::milliseconds(1), QCoreApplication::instance(), [] {});
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

class Folder
{
public:
    // With a parent of its own: what others do in the folder for temporary files is not measured.
    Folder()
        : m_path(fs::temp_directory_path() / ("vantle-benchmark-" + std::to_string(getpid())) / "watched")
    {
        fs::remove_all(m_path.parent_path());
        fs::create_directories(m_path);
    }
    ~Folder() { fs::remove_all(m_path.parent_path()); }

    std::string path() const { return m_path.string(); }
    std::string file(int i) const
    {
        char name[32];
        std::snprintf(name, sizeof name, "/file-%015d", i); // 20 characters
        return m_path.string() + name;
    }
    void fill(int count) const
    {
        for (int i = 0; i < count; ++i)
            std::ofstream(file(i)) << i;
    }

private:
    const fs::path m_path;
};

/// Runs a function in a child process.
pid_t inChild(const std::function<void()> &function)
{
    const pid_t child = fork();
    if (child == 0) {
        function();
        _exit(0);
    }
    return child;
}

class Counter final : public VRXWatchFolderDelegate
{
public:
    void watchFolderFileAddedAtURL(VRXWatchFolder *, const QUrl &, bool) override { ++added; }
    void watchFolderFileUpdatedAtURL(VRXWatchFolder *, const QUrl &, bool) override { ++updated; }
    void watchFolderAddedURLsUpdatedURLsDeletedURLs(VRXWatchFolder *, const QList<QUrl> &,
                                                    const QList<QUrl> &, const QList<QUrl> &) override
    {
        ++batches;
    }
    void watchFolderDidReloadCurrentURLs(VRXWatchFolder *) override { reloaded = true; }

    std::atomic<int> added = 0;
    std::atomic<int> updated = 0;
    std::atomic<int> batches = 0;
    std::atomic<bool> reloaded = false;
};

struct Watching
{
    Watching(const std::string &folder, WatchBackend backend, double latency,
             const WatchFolderEnvironment &environment = WatchFolderEnvironment::system())
        : watcher(QString::fromStdString(folder), counter, false, latency, {}, {}, environment)
    {
        watcher.setBackend(backend);
        watcher.setQualityOfService(QualityOfService::Default); // compared with loops of normal priority
        if (!watcher.startWatching())
            throw std::runtime_error("can't watch");
        spinUntil([this] { return counter->reloaded.load(); });
    }

    void flush()
    {
        std::atomic<bool> done = false;
        watcher.flush([&done] { done = true; });
        spinUntil([&done] { return done.load(); });
    }

    std::shared_ptr<Counter> counter = std::make_shared<Counter>();
    VRXWatchFolder watcher;
};

// 10,000 files created by another process.
void burst(WatchBackend backend)
{
    constexpr int files = 10'000;
    constexpr double latency = 0.1;
    std::vector<double> bare, ours, delay;
    int missed = 0;
    for (int run = 0; run < 7; ++run) {
        {
            const Folder folder;
            const double before = processCpuMilliseconds();
            pid_t child = -1;
            bareReadLoop(backend, folder.path(), fs::path(folder.file(files - 1)).filename(),
                         [&] { child = inChild([&] { folder.fill(files); }); });
            waitpid(child, nullptr, 0);
            bare.push_back(processCpuMilliseconds() - before);
        }
        const Folder folder;
        Watching watching(folder.path(), backend, latency);
        const double before = processCpuMilliseconds();
        std::atomic<bool> ended = false;
        Clock::time_point end;
        const pid_t child = inChild([&] { folder.fill(files); });
        std::thread waiter([&] {
            waitpid(child, nullptr, 0);
            end = Clock::now();
            ended = true;
        });
        spinUntil([&] { return ended && watching.counter->added >= files; });
        delay.push_back(milliseconds(Clock::now() - end));
        ours.push_back(processCpuMilliseconds() - before);
        waiter.join();
        watching.flush();
        missed += std::abs(watching.counter->added - files);
    }
    const std::string name = backendName(backend).toStdString();
    note(name + ": CPU of a bare read loop, 10,000 files", median(bare), "ms");
    note(name + ": CPU of the watcher, 10,000 files", median(ours), "ms");
    report(name + ": CPU, watcher / bare read loop", median(ours) / median(bare), "", 1.3);
    report(name + ": last file reported after the writer's end (latency 100 ms)", median(delay), "ms", 300);
    report(name + ": files missed or added twice in 7 runs", missed, "", 0);
}

// 30,000 files that another process creates while nobody reads the kernel's queue, which overflows.
void recovery(WatchBackend backend)
{
    constexpr int files = 30'000;
    std::vector<double> bare, ours, delay;
    int missed = 0;
    for (int run = 0; run < 7; ++run) {
        const Folder folder;
        const auto holder = std::make_shared<test::HoldableQueue::Holder>();
        auto environment = WatchFolderEnvironment::system();
        environment.startStream = [&holder](const auto &configuration, WatchBackend wanted,
                                            std::error_code &error) {
            auto stream =
                std::make_shared<KernelEventStream>(configuration, wanted, [&, wanted](auto &refused) {
                    auto queue = wanted == WatchBackend::Fanotify ? openFanotifyQueue(refused)
                                                                  : openInotifyQueue(refused);
                    return queue ? std::make_unique<test::HoldableQueue>(std::move(queue), holder) : nullptr;
                });
            error = stream->start();
            return error ? nullptr : stream;
        };
        Watching watching(folder.path(), backend, 0.1, environment);
        holder->hold(true);
        waitpid(inChild([&] { folder.fill(files); }), nullptr, 0);
        double before = processCpuMilliseconds();
        if (bareListing(folder.path()) != files)
            throw std::runtime_error("the listing is not complete");
        bare.push_back(processCpuMilliseconds() - before);
        before = processCpuMilliseconds();
        const Clock::time_point begin = Clock::now();
        holder->hold(false);
        spinUntil([&] { return watching.counter->added >= files; });
        delay.push_back(milliseconds(Clock::now() - begin));
        ours.push_back(processCpuMilliseconds() - before);
        watching.flush();
        missed += std::abs(watching.counter->added - files);
    }
    const std::string name = backendName(backend).toStdString();
    note(name + ": CPU of a relisting with one statx a file, 30,000 files", median(bare), "ms");
    note(name + ": CPU of the recovery from an overflow, 30,000 files", median(ours), "ms");
    note(name + ": last file reported after the reader went on", median(delay), "ms");
    report(name + ": CPU, recovery / relisting", median(ours) / median(bare), "", 1.5);
    report(name + ": files missed or added twice in 7 recoveries", missed, "", 0);
}

void firstInventory()
{
    constexpr int files = 100'000;
    const Folder folder;
    folder.fill(files);
    bareListing(folder.path());
    std::vector<double> bare, ours;
    for (int run = 0; run < 7; ++run) {
        Clock::time_point begin = Clock::now();
        if (bareListing(folder.path()) != files)
            throw std::runtime_error("the listing is not complete");
        bare.push_back(milliseconds(Clock::now() - begin));
        begin = Clock::now();
        const Watching watching(folder.path(), WatchBackend::Automatic, 0.1);
        ours.push_back(milliseconds(Clock::now() - begin));
    }
    note("bare readdir + statx of 100,000 files", median(bare), "ms");
    note("first inventory of 100,000 files", median(ours), "ms");
    report("first inventory / bare listing", median(ours) / median(bare), "", 1.5);

    malloc_trim(0);
    const size_t before = mallinfo2().uordblks;
    const Watching watching(folder.path(), WatchBackend::Automatic, 0.1);
    const double perFile = static_cast<double>(mallinfo2().uordblks - before) / files;
    report("memory per inventoried file with a name of 20 characters", perFile, "bytes", 400);
}

double cpuPerChange(int files)
{
    const Folder folder;
    folder.fill(files);
    // Forked before the inventory exists, whose size would otherwise count: a fork copies page tables.
    int requests[2];
    if (pipe(requests) != 0)
        throw std::runtime_error("no pipe");
    const pid_t child = inChild([&] {
        close(requests[1]);
        int file = 0;
        while (read(requests[0], &file, sizeof file) == sizeof file)
            std::ofstream(folder.file(file), std::ios::app) << "x";
    });
    close(requests[0]);

    Watching watching(folder.path(), WatchBackend::Automatic, 0.001);
    constexpr int changes = 400;
    std::vector<double> costs;
    for (int run = 0; run < 9; ++run) {
        const double before = processCpuMilliseconds();
        for (int i = 0; i < changes; ++i) {
            const int updates = watching.counter->updated;
            const int file = i % 100;
            if (write(requests[1], &file, sizeof file) != sizeof file)
                throw std::runtime_error("the child is gone");
            spinUntil([&] { return watching.counter->updated > updates; });
        }
        costs.push_back((processCpuMilliseconds() - before) / changes);
    }
    close(requests[1]);
    waitpid(child, nullptr, 0);
    return median(costs);
}

void oneChange()
{
    const double few = cpuPerChange(100);
    const double many = cpuPerChange(100'000);
    note("CPU of one changed file among 100", 1000 * few, "us");
    note("CPU of one changed file among 100,000", 1000 * many, "us");
    report("one change, among 100,000 / among 100", many / few, "", 1.2);
}

void rewrites()
{
    constexpr int files = 100;
    const Folder folder;
    folder.fill(files);
    Watching watching(folder.path(), WatchBackend::Automatic, 0.05);
    std::atomic<bool> ended = false;
    const pid_t child = inChild([&] {
        for (int i = 0; i < 100; ++i)
            folder.fill(files);
    });
    std::thread waiter([&] {
        waitpid(child, nullptr, 0);
        ended = true;
    });
    spinUntil([&] { return ended.load(); });
    waiter.join();
    watching.flush();
    note("callbacks for 10,000 rewrites of 100 files", watching.counter->updated, "");
    report("updates per path and window",
           static_cast<double>(watching.counter->updated) / watching.counter->batches / files, "", 1.0);
}

void idle()
{
    const Folder folder;
    folder.fill(1000);
    Watching watching(folder.path(), WatchBackend::Automatic, 0.05);
    watching.flush();
    const double before = processCpuMilliseconds();
    rusage start = {};
    getrusage(RUSAGE_SELF, &start);
    QTimer::singleShot(std::chrono::seconds(2), QCoreApplication::instance(),
                       [] { QCoreApplication::exit(); });
    QCoreApplication::exec();
    rusage end = {};
    getrusage(RUSAGE_SELF, &end);
    note("CPU of 2 idle seconds", processCpuMilliseconds() - before, "ms");
    // One is the benchmark's own timer; the event loop may look once more.
    report("wake-ups in 2 idle seconds", static_cast<double>(end.ru_nvcsw - start.ru_nvcsw), "", 3);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const std::string wanted = argc > 1 ? argv[1] : "";
    const std::pair<const char *, std::function<void()>> measurements[] = {
        {"burst-fanotify", [] { burst(WatchBackend::Fanotify); }},
        {"burst-inotify", [] { burst(WatchBackend::Inotify); }},
        {"recovery-fanotify", [] { recovery(WatchBackend::Fanotify); }},
        {"recovery-inotify", [] { recovery(WatchBackend::Inotify); }},
        {"first-inventory", firstInventory},
        {"one-change", oneChange},
        {"rewrites", rewrites},
        {"idle", idle},
    };
    try {
        for (const auto &[name, measure] : measurements) {
            if (std::string(name).find(wanted) != std::string::npos)
                measure();
        }
    } catch (const std::exception &exception) {
        std::fprintf(stderr, "%s\n", exception.what());
        return 1;
    }
    return allWithinLimits ? 0 : 1;
}
