// SPDX-License-Identifier: MIT

// Two stores and a shell work on one folder at random, for a time:
//   soak SECONDS [SEED]
// They are killed and started again, the disk fills up, the folder is replaced. After each bout of this both
// lists must become what a fresh start finds in the folder, no preset may be gone that nobody removed, and no
// temporary file may be left. Prints a line per check. At a difference it prints the seed, both lists, the
// folder and the last log lines, keeps the folder, and exits 1.

#include "VantlePresets/core/Log.h"
#include "VantlePresets/model/PresetFactory.h"
#include "tests/soak/SoakListing.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Wait.h"

#include <QtCore/QElapsedTimer>

#include <csignal>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
#include <random>

#include <sys/mount.h>
#include <unistd.h>

namespace vantle::test {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::seconds kPatience{30}; // until lists that differ are a fault
constexpr unsigned kAnswerSeconds = 120;      // until a process that does not answer is one

/// What the shell does, run in the folder. R is a random number below 20. Presets that are kept only move and
/// change; each new name of theirs keeps the second word.
constexpr const char *kScripts[] = {
    "f=$(ls | grep '^Other' | head -n1) && cp \"$f\" \"Other $R.json\"",
    "f=$(ls | grep '^Other' | tail -n1) && mv \"$f\" \"Other $R.json\"",
    "rm -f \"Other $R.json\"",
    "cp ../good.json .t && mv .t \"Other $R.json\"",
    "cat ../good.json > \"Other $R.json\"",
    "f=$(ls | grep '^Keep' | tail -n1) && k=\"${f#Keep }\" && mv -n \"$f\" \"Keep ${k%%[ .]*} s$R$N.json\"",
    R"(f=$(ls | grep '^Keep' | head -n1) && sed -i 's/"bitRate":[0-9]*,"profile/"bitRate":'$R',"profile/' "$f")",
    "f=$(ls | grep '^Keep' | head -n1) && cp \"$f\" .u && cat .u > \"$f\"; rm -f .u",
    "{ head -c 200 ../good.json; sleep 0.3; tail -c +201 ../good.json; } > \"Other $R.json\" &",
    "ln -sf ../good.json \"Link $R.json\"",
    "ln -sf nowhere \"Link $R.json\"",
    "rm -f \"Link $R.json\"",
    "printf '{ broken' > \"Other $R.json\"",
    "printf '{ broken' > \"Broken $R.json\"",
    "rm -f \"Broken $R.json\"",
    "touch \"$(ls | head -n1)\"",
    "chmod 640 \"$(ls | tail -n1)\"",
};

class Soak
{
public:
    explicit Soak(unsigned seed) : m_seed(seed), m_random(seed)
    {
        mountSmallDisk();
        fs::create_directories(folder());
        m_data.write("Orvalle/good.json",
                     makePreset(StreamingType::hls, {})->encoded(document::Format::compact));
        for (auto &manager : m_managers)
            start(manager);
        m_shell.emplace(std::vector<std::string>{"sh"});
    }

    ~Soak()
    {
        m_shell.reset();
        for (auto &manager : m_managers)
            manager.reset();
        if (m_isMounted)
            ::umount2(m_data.path().c_str(), MNT_DETACH);
    }

    Soak(const Soak &) = delete;
    Soak &operator=(const Soak &) = delete;

    /// One bout and its check; false at a difference.
    bool round(int number)
    {
        ++m_round;
        const char *event = "";
        command("go");
        const unsigned length = 5 + below(40);
        const unsigned happensAt = below(length);
        const unsigned kind = below(8);
        for (unsigned step = 0; step < length; ++step) {
            runInShell();
            if (step == happensAt)
                event = disturb(kind);
        }
        if (m_isDiskFull)
            freeDisk();
        command("stop");
        askShell("wait");
        const bool isGood = check(number, event);
        if (!m_isFolderAway)
            return isGood;
        const bool isGoodAgain = isGood && bringFolderBack() && check(number, "and back");
        return isGoodAgain;
    }

    void describeFailure()
    {
        std::printf("FAILED: %s\nreproduce: soak SECONDS %u (round %d)\n", m_failure.constData(), m_seed,
                    m_round);
        for (std::size_t i = 0; i < 2; ++i) {
            printMissing("only a fresh start has", m_fresh, m_lists[i], i);
            printMissing("a fresh start lacks", m_lists[i], m_fresh, i);
            const auto [own, wanted] =
                std::mismatch(m_lists[i].begin(), m_lists[i].end(), m_fresh.begin(), m_fresh.end());
            if (own != m_lists[i].end())
                std::printf("manager %zu, row %lld: %s\n", i + 1,
                            static_cast<long long>(own - m_lists[i].begin()), own->constData());
        }
        const std::string kept = "/tmp/vantle-soak-" + std::to_string(::getpid());
        ChildProcess shell({"sh", "-c",
                            "cp -a '" + m_data.path() + "' '" + kept + "'; echo 'the folder, kept in " +
                                kept + "'; ls -lAi --full-time '" + folder().string() +
                                "'; echo log; tail -n 200 '" + logPath() + "'"});
        for (std::string line; !(line = shell.receive()).empty();)
            std::printf("%s\n", line.c_str());
    }

private:
    using Manager = std::unique_ptr<ChildProcess>;

    [[nodiscard]] fs::path folder() const { return m_data.path("Orvalle/Streaming Presets"); }
    [[nodiscard]] std::string logPath() const { return m_log.path("log").string(); }
    unsigned below(unsigned limit) { return static_cast<unsigned>(m_random() % limit); }

    static void printMissing(const char *what, const QByteArrayList &lines, const QByteArrayList &others,
                             std::size_t manager)
    {
        for (const QByteArray &line : lines) {
            if (!others.contains(line))
                std::printf("%s (manager %zu): %s\n", what, manager + 1, line.constData());
        }
    }

    void mountSmallDisk()
    {
        m_isMounted = ::mount("tmpfs", m_data.path().c_str(), "tmpfs", 0, "size=1m,mode=755") == 0;
        if (!m_isMounted)
            std::printf("full disks are skipped, mounting is refused: %s\n", std::strerror(errno));
    }

    void start(Manager &manager)
    {
        manager = std::make_unique<ChildProcess>(
            std::vector<std::string>{SOAK_MANAGER, m_data.path(), std::to_string(m_random()), logPath()});
        ::alarm(kAnswerSeconds);
        if (manager->receive() != "loaded")
            throw std::runtime_error("a manager did not start");
    }

    void command(const std::string &line)
    {
        for (const auto &manager : m_managers)
            manager->send(line);
    }

    void askShell(const std::string &script)
    {
        ::alarm(kAnswerSeconds);
        m_shell->send(script + "; echo done");
        if (m_shell->receive() != "done")
            throw std::runtime_error("the shell is gone");
    }

    void runInShell()
    {
        // What is written in place needs room; moves and removals do not.
        if (m_isDiskFull)
            return askShell("true");
        const std::string script = kScripts[below(std::size(kScripts))];
        // Through a link that a store has renamed, the shell would change what all links show.
        askShell("cd '" + folder().string() + "' && R=" + std::to_string(below(20)) + " N=" +
                 std::to_string(m_random()) + " && { [ ! -L \"Other $R.json\" ] || rm \"Other $R.json\"; " +
                 script + "\n } 2>/dev/null >/dev/null");
    }

    const char *disturb(unsigned kind)
    {
        switch (kind) {
        case 0:
        case 1:
        case 2: {
            Manager &victim = m_managers[below(2)];
            ::kill(victim->id(), SIGKILL);
            start(victim);
            victim->send("go");
            return "killed";
        }
        case 3:
            if (!m_isMounted)
                return "";
            askShell("cat /dev/zero > '" + m_data.path() + "/filler' 2>/dev/null");
            m_isDiskFull = true;
            return "disk full";
        case 4:
            fs::rename(folder(), away());
            fs::create_directory(folder());
            m_isFolderAway = true;
            return "folder replaced";
        default:
            return "";
        }
    }

    void freeDisk()
    {
        fs::remove(m_data.path("filler"));
        m_isDiskFull = false;
    }

    [[nodiscard]] fs::path away() const { return m_data.path("Orvalle/away"); }

    bool bringFolderBack()
    {
        fs::rename(folder(), m_data.path("Orvalle/other"));
        fs::rename(away(), folder());
        fs::remove_all(m_data.path("Orvalle/other"));
        m_isFolderAway = false;
        return true;
    }

    bool check(int number, const char *event)
    {
        tidyUp();
        const QDeadlineTimer deadline(kPatience);
        do {
            for (std::size_t i = 0; i < 2; ++i)
                m_lists[i] = listOf(*m_managers[i]);
            m_fresh = freshList();
        } while ((m_lists[0] != m_fresh || m_lists[1] != m_fresh) && !deadline.hasExpired());
        for (const auto &entry : fs::directory_iterator(folder())) { // nobody writes any more
            const std::string name = entry.path().filename().string();
            if (name.starts_with(".vantle-"))
                m_failure = "a temporary file is left: " + QByteArray::fromStdString(name);
        }
        const qsizetype kept = noteKept();
        std::printf("%d: %lld presets, %lld kept%s%s\n", number, static_cast<long long>(m_fresh.size()),
                    static_cast<long long>(kept), *event ? ", " : "", event);
        std::fflush(stdout);
        return m_failure.isEmpty();
    }

    /// A preset whose file somebody has broken stays in the lists until the file says something else.
    void tidyUp()
    {
        for (const auto &entry : fs::directory_iterator(folder())) {
            if (entry.path().filename().string().starts_with('.')) // being written
                continue;
            try {
                static_cast<void>(readPresetFile(entry.path()));
            } catch (const std::exception &) {
                fs::remove(entry.path());
            }
        }
    }

    static QByteArrayList listOf(ChildProcess &manager)
    {
        ::alarm(kAnswerSeconds);
        manager.send("list");
        QByteArrayList lines;
        for (std::string line; !(line = manager.receive()).empty();)
            lines.append(QByteArray::fromStdString(line));
        return lines;
    }

    QByteArrayList freshList()
    {
        const PresetsManager fresh([&] { return QStringList{QString::fromStdString(m_data.path())}; });
        if (!waitFor([&] { return fresh.isLoaded(); }))
            throw std::runtime_error("a fresh start finds nothing");
        return listingOf(fresh);
    }

    /// Compares with what was there before; the number of presets that may not be lost.
    qsizetype noteKept()
    {
        if (m_lists[0] != m_fresh || m_lists[1] != m_fresh)
            m_failure = "a list is not what a fresh start finds";
        std::map<QByteArray, QByteArrayList> present; // names by mark
        for (const QByteArray &line : m_fresh) {
            const QByteArray name = line.first(line.indexOf('\t'));
            if (!name.startsWith("Keep "))
                continue;
            const QByteArray mark = name.split(' ')[1];
            if (!line.contains(QByteArray("\"trackName\":\"" + mark + '"')))
                m_failure = "a preset has another one's content: " + name;
            present[mark].append(name);
        }
        if (m_isFolderAway)
            return static_cast<qsizetype>(present.size());
        for (const QByteArray &mark : m_kept) {
            if (!present.contains(mark))
                m_failure = "a preset that nobody removed is gone: " + mark;
        }
        m_kept.clear();
        for (const auto &[mark, names] : present) {
            m_kept.append(mark);
            for (const QByteArray &name : names.mid(1)) // two had renamed it at once
                fs::remove(folder() / (name.toStdString() + ".json"));
        }
        return m_kept.size();
    }

    const unsigned m_seed;
    std::mt19937 m_random;
    const TemporaryFolder m_data;
    const TemporaryFolder m_log;
    bool m_isMounted = false;
    bool m_isDiskFull = false;
    bool m_isFolderAway = false;
    int m_round = 0;
    std::array<Manager, 2> m_managers;
    std::optional<ChildProcess> m_shell;
    std::array<QByteArrayList, 2> m_lists;
    QByteArrayList m_fresh;
    QByteArrayList m_kept; // the marks of presets that were there at the last check
    QByteArray m_failure;
};

} // namespace
} // namespace vantle::test

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc < 2 || argc > 3)
        return std::fputs("usage: soak SECONDS [SEED]\n", stderr), 2;
    const qint64 seconds = QByteArray(argv[1]).toLongLong();
    const unsigned seed = argc > 2 ? QByteArray(argv[2]).toUInt() : std::random_device{}();
    std::printf("seed %u\n", seed);
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGALRM, [](int) {
        constexpr char kText[] = "FAILED: a process does not answer\n";
        static_cast<void>(::write(STDOUT_FILENO, kText, sizeof kText - 1));
        ::_exit(1);
    });
    vantle::setLogSink([](const QString &) {});
    vantle::test::Soak soak(seed);
    QElapsedTimer time;
    time.start();
    for (int number = 1; time.elapsed() < 1000 * seconds; ++number) {
        if (!soak.round(number)) {
            soak.describeFailure();
            return 1;
        }
    }
    std::printf("no difference in %lld s\n", static_cast<long long>(seconds));
    return 0;
}
