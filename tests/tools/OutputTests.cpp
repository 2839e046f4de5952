// SPDX-License-Identifier: MIT
#include "tests/support/SecretDocuments.h"
#include "tests/tools/ScriptTest.h"

#include <thread>

#include <fcntl.h>

namespace vantle::test {
namespace {

/// Shell scripts in a folder that has a.json, a YouTube preset with secrets; it is the store's preset A too.
class Outputs : public ScriptTest
{
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(m_folder.path("data/Orvalle/Streaming Presets"));
        for (const SecretDocument &document : secretDocuments()) {
            if (document.name == "YouTube" || document.name == "HLS") {
                m_folder.write(document.name + ".json", document.text);
                m_folder.write("data/Orvalle/Streaming Presets/" + document.name + ".json", document.text);
            }
        }
    }

    [[nodiscard]] Finished script(const std::string &text) const
    {
        return run("put() { ctl export --data-dir data \"$@\"; }; mode() { stat -c %a \"$1\"; };"
                   "cp YouTube.json a.json;" +
                   text);
    }
};

TEST_F(Outputs, GoWhereTheUserPoints)
{
    for (const char *const text : {
             // A link to a descriptor is written through, from where the descriptor stands.
             "ln -s /proc/self/fd/1 s; put YouTube s >o; test -L s; grep -q YouTube o",
             "ln -s /proc/self/fd/1 s; ln -s s t; echo first >o; ctl convert a.json t >>o;"
             "test -L t; test -L s; test \"$(head -1 o)\" = first; test $(wc -l <o) -gt 9",
             "ln -s /dev/fd/3 s; put YouTube s 3>o; test -L s; grep -q YouTube o",
             // A link to a file stays, and what it leads to is replaced.
             "echo old >r; ln -s r l; ln -s l m; put YouTube m; test -L m; test -L l; grep -q YouTube r",
             "ln -s r l; ctl convert a.json l; test -L l; grep -q YouTube r",
             "mkdir d; ln -s ../r d/l; put YouTube d/l; grep -q YouTube r",
             // Others may have put a link into the presets folder.
             "f='data/Orvalle/Streaming Presets'; echo victim >v; ln -s ../../../v \"$f/L.json\";"
             "ctl convert a.json \"$f/L.json\"; test ! -L \"$f/L.json\"; grep -q victim v",
             "mkfifo -m 600 f; cat f >o & put YouTube f; wait; test -p f; grep -q YouTube o",
             "mknod n c 1 3 || exit 0; put YouTube n; test -c n",
             "ctl convert - - <a.json >o; ctl convert a.json p; grep -q YouTube o; diff -q o p || cmp -n 500 "
             "o p",
             "ctl validate - <a.json | grep -q '^ok     -  YouTube'; ctl show - <a.json | grep -q YouTube",
             "cat a.json | ctl import - --name New --data-dir data; put New - | grep -q YouTube",
             "ctl import a.json --name Other --data-dir data",
         }) {
        const Finished run = script(text);
        EXPECT_EQ(run.exitCode, 0) << text << '\n' << run.errors.toStdString();
        static_cast<void>(script("rm -rf s t o r l m d v f p n data/Orvalle/*/L.json"));
    }
}

TEST_F(Outputs, AreRefusedWithALine)
{
    const struct
    {
        const char *text;
        const char *complaint;
    } rows[] = {
        {"put YouTube .", "vantlectl: .: Is a directory\n"},
        {"ln -s /proc/self/fd/3 s; put YouTube s 3>/dev/full", "vantlectl: s: No space left on device\n"},
        {"ctl convert a.json - >/dev/full", "vantlectl: can't write the output: No space left on device\n"},
        {"ln -s l l; put YouTube l", "vantlectl: l: Too many levels of symbolic links\n"},
        {"put YouTube no/x.json", "vantlectl: no/x.json: No such file or directory\n"},
        {"put YouTube - >&-", "vantlectl: can't write the output: Bad file descriptor\n"},
        {"sleep 9 & ln -s /proc/$!/fd/1 s; put YouTube s || { kill $!; test -L s; exit 1; }",
         "vantlectl: s: Not a regular file\n"},
        {"mkdir d; cp a.json d/A.json; cp a.json d/B.json; ctl import d --name X --data-dir data",
         "vantlectl: --name is for one file\n"},
        {"if head -c 70M /dev/zero | ctl validate - | grep -q larger; then exit 1; fi", ""},
    };
    for (const auto &row : rows) {
        const Finished run = script(row.text);
        EXPECT_EQ(run.exitCode, 1) << row.text;
        EXPECT_EQ(run.errors.toStdString(), row.complaint) << row.text;
        static_cast<void>(script("rm -rf d l s"));
    }
    EXPECT_FALSE(m_folder.names().contains("no"));
}

TEST_F(Outputs, AreNeverMoreOpenThanTheirSource)
{
    const struct
    {
        const char *mask, *source, *before, *after; ///< modes; "" for a target that is new
    } rows[] = {
        {"022", "644", "", "644"},    {"002", "644", "", "644"},    {"077", "644", "", "644"},
        {"027", "664", "", "664"},    {"022", "600", "", "600"},    {"022", "660", "", "660"},
        {"022", "600", "644", "600"}, {"022", "600", "600", "600"}, {"022", "644", "600", "600"},
        {"022", "640", "640", "640"}, {"022", "640", "604", "640"}, {"022", "644", "666", "644"},
    };
    for (const auto &row : rows) {
        const std::string mode(row.before);
        const Finished run = script("rm -f t; chmod " + std::string(row.source) + " a.json; umask " +
                                    row.mask + (mode.empty() ? "" : "; echo >t; chmod " + mode + " t") +
                                    "; ctl convert a.json t >o; mode t");
        EXPECT_EQ(run.output.toStdString(), std::string(row.after) + '\n')
            << row.mask << ' ' << row.source << ' ' << row.before << run.errors.toStdString();
    }
    if (::geteuid() == 0) { // another group, or owner, may see less of the source
        for (const char *const whose : {"0:1", "1:0"}) {
            const Finished run =
                script("rm -f t; chmod 640 a.json; echo >t; chmod 640 t; chown " + std::string(whose) +
                       " t; ctl convert a.json t >o; stat -c '%a %u:%g' t");
            EXPECT_EQ(run.output, "640 0:0\n") << whose;
        }
    }
}

TEST_F(Outputs, SayWhenSecretsGoWhereOthersCanRead)
{
    const struct
    {
        const char *text;
        const char *note;
    } rows[] = {
        {"put YouTube - --with-secrets >o", "note: others can read standard output, and the secrets in it"},
        {"ln -s /proc/self/fd/1 s; put YouTube s --with-secrets >o", "note: others can read s, and the"},
        {"chmod 600 a.json; ctl convert a.json - >o", "note: others can read standard output, and the"},
        {"put YouTube - --with-secrets | cat >o", ""},
        {"umask 077; put YouTube - --with-secrets >p", ""},
        {"put HLS - --with-secrets >o", ""},
        {"put YouTube - >o", ""},
        {"echo >r; chmod 644 r; put YouTube r --with-secrets; test $(mode r) = 600", ""},
    };
    for (const auto &row : rows) {
        const Finished run = script(row.text);
        EXPECT_EQ(run.exitCode, 0) << row.text;
        EXPECT_EQ(run.errors.isEmpty(), *row.note == '\0') << row.text << run.errors.toStdString();
        EXPECT_TRUE(run.errors.contains(row.note)) << row.text << run.errors.toStdString();
    }
}

TEST_F(Outputs, WaitForAFullPipeAndEndWithAClosedOne)
{
    int ends[2] = {};
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    ASSERT_EQ(::fcntl(ends[1], F_SETFL, O_NONBLOCK), 0);
    std::size_t filling = 0;
    while (::write(ends[1], "\n", 1) == 1)
        ++filling;
    Finished run;
    std::thread running([&] {
        run = runProcess({VANTLECTL, "convert", m_folder.path("HLS.json"), "-"}, ends[1]);
    });
    std::string received(filling, '\0'); // more than was in the pipe: the first bytes of the document
    received += "{";
    std::size_t length = 0;
    for (ssize_t got = 1; got > 0 && length < received.size(); length += static_cast<std::size_t>(got))
        got = ::read(ends[0], received.data() + length, received.size() - length);
    std::string rest(1 << 16, '\0');
    running.join();
    ::close(ends[1]);
    rest.resize(static_cast<std::size_t>(std::max<ssize_t>(::read(ends[0], rest.data(), rest.size()), 0)));
    EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
    EXPECT_EQ(received.back(), '{');
    EXPECT_TRUE(rest.ends_with("}\n"));
    ::close(ends[0]);

    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    ::close(ends[0]);
    run = runProcess({VANTLECTL, "convert", m_folder.path("HLS.json"), "-"}, ends[1]);
    ::close(ends[1]);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.errors, "vantlectl: can't write the output: Broken pipe\n");
}

} // namespace
} // namespace vantle::test
