// SPDX-License-Identifier: MIT
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FinishedProcess.h"
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <QtCore/QVariant>

#include <csignal>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;

class StoreCommands : public testing::Test
{
protected:
    Finished ctl(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), VANTLECTL);
        arguments.insert(arguments.end(), {"--data-dir", m_data.path()});
        return runProcess(arguments);
    }

    [[nodiscard]] std::filesystem::path file(const std::string &name) const
    {
        return m_data.path("Orvalle/Streaming Presets") / (name + ".json");
    }

    TemporaryFolder m_data;
};

TEST_F(StoreCommands, TheWholeLifeOfAPreset)
{
    EXPECT_EQ(ctl({"add", "SRT"}).output, "SRT Preset\n");
    EXPECT_EQ(ctl({"add", "SRT", "--name", "Remote"}).output, "Remote\n");
    EXPECT_EQ(ctl({"set", "Remote", "streamingURL=host.example", "portNumber=9000", "videoSettings.+",
                   "videoSettings.1.codec=HEVC", "videoSettings.1.profile=HEVC_Main 10_AutoLevel",
                   "videoSettings.1.bitRate=6000", "videoSettings.0.-", "audioSettings.+",
                   "audioSettings.1.trackName=Deutsch", "audioSettings.1.isDefault=true",
                   "audioSettings.1.inputChannels=2,0,1"})
                  .exitCode,
              0);
    EXPECT_EQ(ctl({"duplicate", "Remote"}).output, "Remote copy\n");
    const Finished renamed = ctl({"rename", "Remote", " Studio "});
    EXPECT_EQ(renamed.output, "Studio\n");
    EXPECT_TRUE(renamed.errors.contains("note: the name is \"Studio\", without the blanks around it\n"));
    EXPECT_EQ(ctl({"remove", "SRT Preset"}).exitCode, 0);
    EXPECT_EQ(ctl({"list", "--names"}).output, "Remote copy\nStudio\n");
    const QList<QByteArray> listed = ctl({"list", "--json", "--kind", "SRT"}).output.split('\n');
    ASSERT_EQ(listed.size(), 3);
    EXPECT_TRUE(listed[0].startsWith(R"({"name":"Remote copy","type":"SRT",)")) << listed[0].toStdString();
    EXPECT_TRUE(listed[1].startsWith(R"({"name":"Studio","type":"SRT",)")) << listed[1].toStdString();
    EXPECT_EQ(listed[1] + '\n', ctl({"show", "--json", "Studio"}).output);

    const auto studio = readPresetFile(file("Studio"));
    EXPECT_EQ(studio->property("streamingURL").toString(), u"host.example"_s);
    EXPECT_EQ(studio->property("portNumber").toLongLong(), 9000);
    EXPECT_EQ(studio->videoSettings().first()->profile(), u"HEVC_Main 10_AutoLevel"_s);
    EXPECT_EQ(studio->videoSettings().first()->bitRate(), 6000);
    EXPECT_FALSE(studio->audioSettings()[0]->isDefault());
    EXPECT_TRUE(studio->audioSettings()[1]->isDefault());
    EXPECT_EQ(studio->audioSettings()[1]->inputChannels(), (QList<qint64>{2, 0, 1}));
    EXPECT_TRUE(ctl({"show", "Studio"}).output.startsWith("Studio (SRT)\n"));
}

TEST_F(StoreCommands, WhatIsRefusedChangesNothing)
{
    ASSERT_EQ(ctl({"add", "RTMP", "--name", "A"}).exitCode, 0);
    ASSERT_EQ(ctl({"add", "HLS", "--name", "B"}).exitCode, 0);
    const auto contentOf = [this](const char *name) {
        return readPresetFile(file(name))->encoded(document::Format::compact);
    };
    const QByteArray before = contentOf("A");
    struct Row
    {
        std::vector<std::string> arguments;
        int exitCode;
        QByteArray reason;
    };
    for (const Row &row : std::initializer_list<Row>{
             {{"set", "A", "portNumber"}, 2, "not an assignment"},
             {{"set", "A", "portNumber=1", "videoSettings.x=1"}, 2, "not an assignment"},
             {{"set", "A", "portNumber=1", "nonsense=1"}, 1, "nonsense: no such field"},
             {{"set", "A", "bitRate=5"},
              1,
              "bitRate: no such field, or one that can't be set here; did you mean videoSettings.0.bitRate "
              "or "
              "audioSettings.0.bitRate?"},
             {{"set", "A", "portNumber=1", "name=B"}, 1, "name: no such field"},
             {{"set", "A", "portNumber=1x"}, 1, "portNumber: expected an integer"},
             {{"set", "A", "videoSettings.0.frameRate=nan"}, 1, "frameRate: expected a number"},
             {{"set", "A", "videoSettings.0.codec=VP9"}, 1, "codec: expected one of: H.264, HEVC"},
             {{"set", "A", "videoSettings.1.pid=2"}, 1, "videoSettings.1.pid: the list has 1 entries"},
             {{"set", "A", "videoSettings.+"}, 1, "RTMP presets keep"},
             {{"set", "A", "streamKey=s3cret"}, 1, "streamKey: not kept in the files of RTMP presets"},
             {{"set", "A", "authenticationPassword=s3cret"}, 1, "only while authenticate is true"},
             {{"set", "A", "streamKey=@-", "application=@-"}, 2, "standard input is read for something else"},
             {{"ffmpeg", "-", "streamKey=@-"}, 2, "standard input is read for something else"},
             {{"set", "A", "streamKey=@-"}, 1, "streamKey: there is no text to read"},
             {{"set", "A", "audioSettings[0].name=x"}, 1, "audioSettings.0.name: no such field"},
             {{"rename", "A", "B"}, 1, "a preset named \"B\" exists"},
             {{"rename", "A", " "}, 1, "can't be empty"},
             {{"rename", "A", ".b"}, 1, "would be hidden"},
             {{"rename", "A", "x/y"}, 1, "can't hold \"/\""},
             {{"rename", "A", "x\ny"}, 1, "can't hold control characters"},
             {{"add", "HLS", "--name", "x\xe2\x80\xaey"}, 1, "marks that turn the direction"},
             {{"add", "HLS", "--name", "x\xff"}, 1, "has to be UTF-8"},
             {{"remove", "A\xff"}, 1, "has to be UTF-8"},
             {{"set", "A", "streamingURL=x\xff"}, 2, "argument 1 is no UTF-8"},
             {{"set", "A", "portNumber=1", "streamingURL=a\x1b"}, 1, "streamingURL: can't hold a line break"},
             {{"add", "HLS", "--name", ".x"}, 1, "would be hidden"},
             {{"add", "HLS", "--name", std::string(300, 'x')}, 1, "File name too long"},
             {{"remove", "C"}, 1, "there is no preset named \"C\""},
             {{"add", "hls"}, 2, "KIND"},
             {{"list", "--kind", "Video"}, 2, "--kind"},
             {{"export", "A", "/nowhere/x.json"}, 1, "No such file or directory"}}) {
        const Finished refused = ctl(row.arguments);
        EXPECT_EQ(refused.exitCode, row.exitCode) << row.reason.toStdString();
        EXPECT_TRUE(refused.errors.contains(row.reason)) << refused.errors.toStdString();
        EXPECT_FALSE(refused.errors.contains("s3cret"));
        EXPECT_EQ(refused.output, "");
        EXPECT_EQ(contentOf("A"), before);
    }
    const Finished renamed = ctl({"rename", "A", std::string(300, 'x')});
    EXPECT_EQ(renamed.exitCode, 1);
    EXPECT_EQ(renamed.output, "A\n"); // the name that it still has
    const Finished below = ctl({"set", "A", "videoSettings.0.bitRate=-5"});
    EXPECT_EQ(below.exitCode, 0);
    EXPECT_TRUE(below.errors.contains("videoSettings.0.bitRate: -5 is below zero, set to 0"));
    const Finished limited = ctl({"set", "A", "videoSettings.0.bitRate=999999"});
    EXPECT_EQ(limited.exitCode, 0);
    EXPECT_TRUE(limited.errors.contains("videoSettings.0.bitRate: limited to 240000 by the profile"));
}

TEST_F(StoreCommands, AdviceIsToldBesideTheResult)
{
    ASSERT_EQ(ctl({"add", "Facebook", "--name", "Page"}).exitCode, 0);
    ASSERT_EQ(ctl({"add", "RTMP", "--name", "Plain"}).exitCode, 0);
    const QByteArray port = "vantlectl: error: portNumber: Facebook's port for RTMPS is 443\n";
    EXPECT_TRUE(ctl({"show", "Page"}).errors.contains(port));
    EXPECT_TRUE(ctl({"set", "Page", "application=rtmp"}).errors.contains(port));
    const Finished sent = ctl({"ffmpeg", "Page", "streamKey=k"});
    EXPECT_EQ(sent.exitCode, 0);
    EXPECT_TRUE(sent.errors.contains(port));

    const Finished served = ctl({"set", "Page", "--for-service", "streamKey=k"});
    EXPECT_EQ(served.exitCode, 0);
    EXPECT_FALSE(served.errors.contains("error: ")) << served.errors.toStdString();
    EXPECT_EQ(readPresetFile(file("Page"))->property("portNumber").toInt(), 443);
    EXPECT_EQ(ctl({"show", "Page"}).errors, "");
    EXPECT_EQ(ctl({"set", "Page", "--for-service", "portNumber=444"}).errors.count("error: portNumber"), 1);
    const Finished refused = ctl({"set", "Plain", "--for-service"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.errors.contains("RTMP presets belong to no service; nothing was changed"));
    EXPECT_EQ(ctl({"set", "Plain"}).exitCode, 2);

    // What only the document tells.
    const TemporaryFolder out;
    const std::string misread = out.write("Tube.json", presetText("Youtube").text());
    const QByteArray kind = ": error: type: is no known kind";
    EXPECT_TRUE(ctl({"show", misread}).errors.contains(QByteArray("vantlectl" + kind)));
    const Finished imported = ctl({"import", misread});
    EXPECT_EQ(imported.exitCode, 0);
    EXPECT_TRUE(imported.errors.contains(QByteArray("Tube.json" + kind)));
    runScript(file("Page").parent_path(), "cp '" + misread + "' Tube.json");
    EXPECT_TRUE(ctl({"show", "Tube"}).errors.contains(QByteArray("vantlectl" + kind)));
}

TEST_F(StoreCommands, ImportAndExportKeepSecretsToThemselves)
{
    const std::string sample = VANTLE_SAMPLES "/YouTube Premiere.json";
    EXPECT_EQ(ctl({"import", sample, "/nowhere.json"}).exitCode, 1);
    EXPECT_EQ(ctl({"list", "--names"}).output, "YouTube Premiere\n");
    EXPECT_TRUE(ctl({"import", sample}).errors.contains("a preset of this name exists"));
    const auto keyOf = [](const std::filesystem::path &path) {
        return readPresetFile(path)->property("streamKey").toString();
    };
    const TemporaryFolder out;
    ASSERT_EQ(ctl({"export", "YouTube Premiere", out.path("plain.json")}).exitCode, 0);
    ASSERT_EQ(ctl({"export", "YouTube Premiere", out.path("full.json"), "--with-secrets"}).exitCode, 0);
    EXPECT_EQ(keyOf(out.path("plain.json")), u""_s);
    EXPECT_EQ(keyOf(out.path("full.json")), keyOf(sample));
    EXPECT_NE(keyOf(sample), u""_s);
    const auto modeOf = [&](const char *name) {
        return std::filesystem::status(out.path(name)).permissions();
    };
    using std::filesystem::perms;
    EXPECT_EQ(modeOf("full.json"), perms::owner_read | perms::owner_write);
    // One that others could read before is closed to them.
    ASSERT_EQ(ctl({"export", "YouTube Premiere", out.path("plain.json"), "--with-secrets"}).exitCode, 0);
    EXPECT_EQ(modeOf("plain.json"), perms::owner_read | perms::owner_write);
}

TEST_F(StoreCommands, TextsCanComeFromAFileOrStandardInput)
{
    ASSERT_EQ(ctl({"add", "YouTube", "--name", "A"}).exitCode, 0);
    const auto keyIs = [&](const QString &key) {
        return readPresetFile(file("A"))->property("streamKey") == key;
    };
    const TemporaryFolder folder;
    const std::string set = "'" VANTLECTL "' set A --data-dir '" + m_data.path() + "' ";
    runScript(folder.path(), "printf 'from input\\n' | " + set + "streamKey=@-");
    EXPECT_TRUE(keyIs(u"from input"_s));
    EXPECT_EQ(ctl({"set", "A", "streamKey=@" + folder.write("key", " from a file \r\n").string()}).exitCode,
              0);
    EXPECT_TRUE(keyIs(u" from a file "_s));
    EXPECT_EQ(ctl({"set", "A", "streamKey=@@home"}).exitCode, 0);
    EXPECT_TRUE(keyIs(u"@home"_s));
    struct Row
    {
        std::string value;
        QByteArray reason;
    };
    for (const Row &row : {Row{"streamKey=@" + folder.write("two", "a\nb\n").string(), "expected one line"},
                           Row{"streamKey=@" + folder.write("cut", "a\xc3\n").string(), "expected UTF-8"},
                           Row{"streamKey=@" + folder.write("bell", "a\a\n").string(), "can't hold a line"},
                           Row{"streamKey=@/nowhere/key", "No such file"},
                           Row{"portNumber=@" + folder.path("key").string(), "expected an integer"}}) {
        const Finished refused = ctl({"set", "A", row.value});
        EXPECT_EQ(refused.exitCode, 1);
        EXPECT_TRUE(refused.errors.contains(row.reason)) << refused.errors.toStdString();
        EXPECT_TRUE(keyIs(u"@home"_s));
    }
}

/// Commands that run at once, as the same user and as others: no change is lost, and names have no gaps.
TEST_F(StoreCommands, CommandsThatRunAtOnceLoseNothing)
{
    ASSERT_EQ(ctl({"add", "RTMP", "--name", "A"}).exitCode, 0);
    const std::string options = " --data-dir '" + m_data.path() + "' ";
    const std::string set = "'" VANTLECTL "' set A" + options;
    for (int round = 1; round <= 5; ++round) {
        const std::string n = std::to_string(round);
        runScript(m_data.path(), set + "portNumber=" + n + " & " + set + "videoSettings.0.bitRate=" + n +
                                     " & " + set + "audioSettings.0.trackName=" + n + " & wait");
        const auto a = readPresetFile(file("A"));
        EXPECT_EQ(a->property("portNumber").toLongLong(), round);
        EXPECT_EQ(a->videoSettings().first()->bitRate(), round);
        EXPECT_EQ(a->audioSettings().first()->trackName(), QString::number(round));
    }
    runScript(m_data.path(),
              "for i in 1 2 3 4 5 6 7 8; do '" VANTLECTL "' add HLS" + options + "& done; wait");
    EXPECT_EQ(ctl({"list", "--names"}).output, "A\nHLS Preset\nHLS Preset 2\nHLS Preset 3\nHLS Preset 4\n"
                                               "HLS Preset 5\nHLS Preset 6\nHLS Preset 7\nHLS Preset 8\n");
}

/// The command has read the preset when it opens the file that one of its texts comes from; what another
/// process does until there is a text is done in between.
TEST_F(StoreCommands, ASetGoesOnTopOfWhatOthersChangedMeanwhile)
{
    ASSERT_EQ(ctl({"add", "SRT", "--name", "Before"}).exitCode, 0);
    ASSERT_EQ(
        ctl({"set", "Before", "videoSettings.+", "videoSettings.0.bitRate=10", "videoSettings.1.bitRate=11"})
            .exitCode,
        0);
    const std::string options = " --data-dir '" + m_data.path() + "' ";
    const std::string meanwhileSet = "'" VANTLECTL "' set A" + options;
    struct Row
    {
        std::string assignment;
        std::string meanwhile;
        QByteArray refusal; // "" when both changes are to be there
        std::vector<qint64> bitRates;
    };
    const QByteArray moved = ": another process has changed the list meanwhile; nothing was changed";
    for (const Row &row : std::initializer_list<Row>{
             {"videoSettings.1.bitRate=5", meanwhileSet + "videoSettings.0.bitRate=6", {}, {6, 5}},
             {"videoSettings.1.bitRate=5", meanwhileSet + "videoSettings.1.frameRate=25", {}, {10, 5}},
             {"videoSettings.1.bitRate=5", meanwhileSet + "audioSettings.+", {}, {10, 5}},
             {"videoSettings.0.bitRate=5",
              meanwhileSet + "videoSettings.0.-",
              "videoSettings.0.bitRate" + moved,
              {11}},
             {"videoSettings.1.-", meanwhileSet + "videoSettings.+", {}, {10, 4500}},
             {"videoSettings.+ videoSettings.2.bitRate=5",
              meanwhileSet + "videoSettings.+",
              "videoSettings.2.bitRate" + moved,
              {10, 11, 4500}},
             {"portNumber=5",
              "echo broken > '" + file("A").string() + "'",
              "another process has changed the file, which can't be read now; nothing was changed",
              {}},
             {"portNumber=5",
              "rm '" + file("A").string() + "'",
              "another process has removed or replaced the preset; nothing was changed",
              {}},
         }) {
        SCOPED_TRACE(row.meanwhile);
        const TemporaryFolder texts;
        const std::string text = texts.path("text");
        const Finished set =
            runProcess({"/usr/bin/timeout", "60", "sh", "-ec",
                        "cp '" + file("Before").string() + "' '" + file("A").string() + "'; mkfifo " + text +
                            "; '" VANTLECTL "' set A" + options + "streamingURL=@" + text + " " +
                            row.assignment + " & exec 3> " + text + "; " + row.meanwhile +
                            "; echo host.example >&3; exec 3>&-; wait $!"});
        EXPECT_EQ(set.exitCode, row.refusal.isEmpty() ? 0 : 1);
        EXPECT_TRUE(set.errors.contains(row.refusal)) << set.errors.toStdString();
        std::vector<qint64> bitRates;
        QVariant host = u""_s;
        try {
            const auto a = readPresetFile(file("A"));
            host = a->property("streamingURL");
            for (const auto &rendition : a->videoSettings())
                bitRates.push_back(rendition->bitRate());
        } catch (const std::exception &) {
            EXPECT_TRUE(row.bitRates.empty());
        }
        EXPECT_EQ(host == u"host.example"_s, row.refusal.isEmpty());
        EXPECT_EQ(bitRates, row.bitRates);
    }
}

TEST_F(StoreCommands, AWordIsAStoredPresetAndAPathAFile)
{
    ASSERT_EQ(ctl({"add", "SRT", "--name", "A"}).exitCode, 0);
    const TemporaryFolder folder;
    folder.write("B", presetText("HLS").text());
    const std::string show = "'" VANTLECTL "' show ";
    const std::string store = " --data-dir '" + m_data.path() + "' ";
    runScript(folder.path(), "mkdir A; " + show + "A" + store + "| grep -qx 'A (SRT)'");
    runScript(folder.path(), show + "./B" + store + "| grep -qx 'B (HLS)'");
    runScript(folder.path(), "! " + show + "B" + store + "2>&1 | grep -q 'B (HLS)'");
}

TEST_F(StoreCommands, ARefusedRemovalIsToldWithItsReason)
{
    ASSERT_EQ(ctl({"add", "HLS", "--name", "A"}).exitCode, 0);
    const std::filesystem::path folder = file("A").parent_path();
    std::filesystem::permissions(folder, std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::remove);
    std::vector<std::string> remove{VANTLECTL, "remove", "A", "--data-dir", m_data.path()};
    if (::geteuid() == 0) // a superuser without its capabilities is refused as others are
        remove.insert(remove.begin(), {"/usr/bin/setpriv", "--bounding-set=-all", "--inh-caps=-all"});
    const Finished refused = runProcess(remove);
    std::filesystem::permissions(folder, std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add);
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.errors.contains("Error deleting file ") &&
                refused.errors.endsWith("A.json: Permission denied\n"))
        << refused.errors.toStdString();
    EXPECT_TRUE(std::filesystem::exists(file("A")));
}

TEST_F(StoreCommands, ANameThatAFileHasTurnsIntoTheNextOne)
{
    ASSERT_EQ(ctl({"add", "HLS", "--name", "A"}).exitCode, 0);
    for (const char *name : {"X", "SRT Preset"})
        m_data.write("Orvalle/Streaming Presets/" + std::string(name) + ".json", "broken");
    m_data.write("X.json", readPresetFile(file("A"))->encoded(document::Format::compact));
    struct Row
    {
        std::vector<std::string> arguments;
        int exitCode; // a failure if another name was asked for
        const char *output;
    };
    for (const Row &row : std::initializer_list<Row>{{{"add", "SRT"}, 0, "SRT Preset 2\n"},
                                                     {{"add", "SRT", "--name", "X"}, 1, "X 2\n"},
                                                     {{"rename", "A", "X"}, 1, "X 3\n"},
                                                     {{"import", m_data.path("X.json")}, 1, "X 4\n"}}) {
        const Finished done = ctl(row.arguments);
        EXPECT_EQ(done.exitCode, row.exitCode) << row.output;
        EXPECT_EQ(done.output, row.output);
    }
    EXPECT_TRUE(std::filesystem::exists(file("X 4")));
    EXPECT_FALSE(std::filesystem::exists(file("A")));
    std::filesystem::create_directory(file("Y"));
    for (const Row &row :
         std::initializer_list<Row>{{{"import", m_data.path("X.json"), "--name", "SRT Preset"},
                                     1,
                                     "stays, and what is imported gets"},
                                    {{"import", m_data.path("X.json"), "--replace", "--name", "Y"},
                                     1,
                                     "stays, since nothing can be read"},
                                    {{"import", m_data.path("X.json"), "--replace"},
                                     0,
                                     "note: X.json, which holds no preset, is"}}) {
        const Finished done = ctl(row.arguments);
        EXPECT_EQ(done.exitCode, row.exitCode) << row.output;
        EXPECT_TRUE(done.errors.contains(row.output)) << done.errors.toStdString();
    }
    EXPECT_EQ(readPresetFile(file("X"))->type(), StreamingType::hls);
}

// What is printed with escapes is no name, but the characters are one.
TEST_F(StoreCommands, AFileOfAnOddNameIsReachedByItsNameAndItsPath)
{
    ASSERT_EQ(ctl({"add", "HLS", "--name", "A"}).exitCode, 0);
    std::filesystem::rename(file("A"), file("x\ny"));
    EXPECT_EQ(ctl({"list", "--names"}).output, "x\\u000ay\n");
    EXPECT_EQ(ctl({"show", file("x\ny")}).exitCode, 0);
    for (const std::vector<std::string> &arguments :
         std::initializer_list<std::vector<std::string>>{{"duplicate", "x\ny"}, {"import", file("x\ny")}})
        EXPECT_TRUE(ctl(arguments).errors.contains("can't hold control characters"));
    EXPECT_EQ(ctl({"set", "x\ny", "videoSettings.0.pid=40"}).exitCode, 0);
    EXPECT_EQ(ctl({"rename", "x\ny", "B"}).output, "B\n");
}

TEST_F(StoreCommands, WatchPrintsEveryChangeAndStopsCleanly)
{
    ASSERT_EQ(ctl({"add", "HLS", "--name", "A"}).exitCode, 0);
    ChildProcess watch({VANTLECTL, "watch", "--data-dir", m_data.path()});
    EXPECT_EQ(watch.receive(), "watching");
    ASSERT_EQ(ctl({"add", "HLS", "--name", "B"}).exitCode, 0);
    EXPECT_EQ(watch.receive(), "added B");
    ASSERT_EQ(ctl({"set", "A", "videoSettings.0.bitRate=1"}).exitCode, 0);
    EXPECT_EQ(watch.receive(), "updated A");
    ASSERT_EQ(ctl({"remove", "B"}).exitCode, 0);
    EXPECT_EQ(watch.receive(), "removed B");
    ::kill(watch.id(), SIGTERM);
    EXPECT_EQ(watch.finish(), 0);
}

TEST_F(StoreCommands, AFolderThatCannotBeUsedIsAnError)
{
    const Finished adding = runProcess({VANTLECTL, "add", "HLS", "--data-dir", "/dev/null"});
    EXPECT_EQ(adding.exitCode, 1);
    EXPECT_EQ(adding.errors, "vantlectl: /dev/null/Orvalle/Streaming Presets: Not a directory\n");
    const auto presets = m_data.path("Orvalle/Streaming Presets");
    std::filesystem::create_directories(presets.parent_path());
    m_data.write("Orvalle/Streaming Presets", {});
    for (const char *command : {"list", "watch"}) {
        const Finished waiting = runProcess({VANTLECTL, command, "--data-dir", m_data.path()});
        EXPECT_EQ(waiting.exitCode, 1);
        EXPECT_EQ(waiting.errors.toStdString(), "vantlectl: " + presets.string() + ": Not a directory\n");
    }
}

} // namespace
} // namespace vantle::test
