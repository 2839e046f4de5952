// SPDX-License-Identifier: MIT
#include "tests/support/FinishedProcess.h"
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace vantle::test {
namespace {

TEST(Validate, TheSamplesAreGoodAndOfEveryKind)
{
    const Finished run = runProcess({VANTLECTL, "validate", "--strict", "--json", VANTLE_SAMPLES});
    EXPECT_EQ(run.exitCode, 0) << run.output.toStdString();
    EXPECT_EQ(run.output.count("\"advice\":[]"), 6) << run.output.toStdString();
    for (const QString &kind : streamingTypes().texts())
        EXPECT_TRUE(run.output.contains(QByteArray("\"type\":\"" + kind.toUtf8() + '"')))
            << kind.toStdString();
    for (const auto &entry : std::filesystem::directory_iterator(VANTLE_SAMPLES)) {
        const auto preset = readPresetFile(entry.path());
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string content(std::istreambuf_iterator<char>(file), {});
        EXPECT_EQ(preset->encoded(document::Format::pretty).toStdString(), content) << "as our writer writes";
        std::set<qint64> pids;
        for (const auto &video : preset->videoSettings())
            pids.insert(video->pid());
        for (const auto &track : preset->audioSettings())
            pids.insert(track->pid());
        EXPECT_EQ(std::ssize(pids), preset->videoSettings().size() + preset->audioSettings().size());
        EXPECT_GE(*pids.begin(), 32);
    }
}

TEST(Validate, OneLineForEachFileOfAFolderSortedByName)
{
    const TemporaryFolder folder;
    folder.write("b.json", presetText("YouTube").without("streamKey").text());
    folder.write("a.json", presetText("Wowza").text());
    folder.write("c\nd\x1b.json", "{");
    folder.write("e\xFF.json", presetText("HLS").with("audioSettings", "[]").text());
    ASSERT_EQ(::mkfifo(folder.path("f.json").c_str(), 0600), 0);
    folder.write("ignored.txt", "");
    folder.write(".hidden.json", "");
    std::filesystem::create_directory(folder.path("deeper.json"));
    const QByteArray at = QByteArray::fromStdString(folder.path()) + '/';

    // Columns are counted in characters in a locale without them, too.
    const Finished run = runProcess({"/usr/bin/env", "LC_ALL=C", VANTLECTL, "validate", folder.path()});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.errors, "");
    const QByteArray blanks(13, ' ');
    const QByteArray expected =
        "ok     " + at + "a.json" + blanks + "  Wowza     1 rendition, 1 track\n" + "error  " + at +
        "b.json" + blanks + "  streamKey: required key is missing\n" + "error  " + at +
        "c\\u000ad\\u001b.json" + "  line 1, column 2: Missing a name for object member\n" + "ok     " + at +
        "e\xEF\xBF\xBD.json" + blanks.chopped(1) + "  HLS       1 rendition, 0 tracks\n" + at +
        "e\xEF\xBF\xBD.json: warning: audioSettings: one track has to be stereo, on which HLS players "
        "count\n" +
        "error  " + at + "f.json" + blanks + "  Not a regular file\n";
    EXPECT_EQ(run.output, expected);
}

TEST(Validate, AdviceStandsBesideTheFileAndFailsOnlyWhenAsked)
{
    const TemporaryFolder folder;
    const std::string file = folder.write(
        "a.json", presetText("RTMP").with("videoSettings", list({videoText(), videoText()})).text());
    const QByteArray text =
        "RTMP carries one video rendition, unless both sides know version 2 of the enhanced protocol";
    const QByteArray lines = "ok     " + QByteArray::fromStdString(file) +
                             "  RTMP      2 renditions, 1 track\n" + QByteArray::fromStdString(file) +
                             ": warning: videoSettings[1]: " + text + '\n';
    for (const bool isStrict : {false, true}) {
        std::vector<std::string> arguments{VANTLECTL, "validate", file};
        if (isStrict)
            arguments.push_back("--strict");
        const Finished run = runProcess(arguments);
        EXPECT_EQ(run.exitCode, isStrict ? 1 : 0);
        EXPECT_EQ(run.output, lines);
        arguments.push_back("--json");
        const QByteArray advice = R"("advice":[{"severity":"warning","place":"videoSettings[1]","text":")" +
                                  text + R"(","source":"ER"}]})";
        EXPECT_TRUE(runProcess(arguments).output.contains(advice));
    }
}

TEST(Validate, JsonHasOneObjectPerLine)
{
    const TemporaryFolder folder;
    const std::string good = folder.write("good.json", presetText("SRT").with("audioSettings", "[]").text());
    const std::string bad = folder.write("bad.json", presetText("SRT").without("portNumber").text());
    const Finished run = runProcess({VANTLECTL, "validate", "--json", good, bad, "/missing.json"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output.toStdString(),
              R"({"file":")" + good +
                  R"(","ok":true,"type":"SRT","videoSettings":1,"audioSettings":0,"advice":[]})" + '\n' +
                  R"({"file":")" + bad +
                  R"(","ok":false,"place":"portNumber","error":"required key is missing"})" + '\n' +
                  R"({"file":"/missing.json","ok":false,"place":"","error":"No such file or directory"})" +
                  '\n');
}

TEST(Validate, WrongUsageIsTold)
{
    for (const std::vector<std::string> &arguments :
         std::initializer_list<std::vector<std::string>>{{VANTLECTL},
                                                         {VANTLECTL, "validate"},
                                                         {VANTLECTL, "validate", "--jsn", "x"},
                                                         {VANTLECTL, "show", "a", "b"},
                                                         {VANTLECTL, "convert", "a"},
                                                         {VANTLECTL, "export", "a"},
                                                         {VANTLECTL, "export", "a", "--all", "b"},
                                                         {VANTLECTL, "import", "-"},
                                                         {VANTLECTL, "import", "a", "b", "--name", "c"},
                                                         {VANTLECTL, "list", "--data-dir", ""},
                                                         {VANTLECTL, "--jsn", "list"},
                                                         {VANTLECTL, "frobnicate"}}) {
        const Finished run = runProcess(arguments);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.output, "");
        EXPECT_TRUE(run.errors.startsWith("vantlectl: ") && run.errors.contains("--help"))
            << run.errors.toStdString();
    }
    EXPECT_TRUE(
        runProcess({VANTLECTL, "lsit"})
            .errors.startsWith("vantlectl: there is no subcommand \"lsit\"; did you mean \"list\"?\n"));
    const Finished help = runProcess({VANTLECTL, "--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.output.contains("validate"));
}

TEST(Validate, AnOutputThatCantBeWrittenIsAnError)
{
    for (const char *argument : {"validate", "--help"}) {
        const Finished run = runProcess({VANTLECTL, argument, VANTLE_SAMPLES}, "/dev/full");
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.errors, "vantlectl: can't write the output: No space left on device\n");
    }
    int pipe[2];
    ASSERT_EQ(::pipe2(pipe, O_CLOEXEC), 0);
    ::close(pipe[0]); // the reader is gone
    const Finished run = runProcess({VANTLECTL, "validate", VANTLE_SAMPLES}, pipe[1]);
    ::close(pipe[1]);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.errors, "vantlectl: can't write the output: Broken pipe\n");
}

} // namespace
} // namespace vantle::test
