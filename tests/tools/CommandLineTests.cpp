// SPDX-License-Identifier: MIT
#include "tests/tools/ScriptTest.h"

namespace vantle::test {
namespace {

/// Scripts in a folder with the store "data", which has the presets "A b" (SRT) and H (HLS).
class CommandLine : public ScriptTest
{
protected:
    void SetUp() override
    {
        EXPECT_EQ(
            run("ctl add SRT --name 'A b' --data-dir data; ctl add HLS --name H --data-dir data").exitCode,
            0);
    }
};

TEST_F(CommandLine, OptionsStandAnywhereAndTheFolderMayComeFromTheEnvironment)
{
    for (const char *const text : {
             "ctl --data-dir data list --names",
             "ctl --data-dir=data --names list",
             "ctl list --data-dir data --names",
             "ctl --names --data-dir data list",
             "export VANTLE_DATA_DIR=data; ctl list --names",
             "export VANTLE_DATA_DIR=/nowhere; ctl list --names --data-dir data",
             "ctl --data-dir /nowhere list --names --data-dir data",
         }) {
        const Finished listed = run(text);
        EXPECT_EQ(listed.exitCode, 0) << text;
        EXPECT_EQ(listed.output, "A b\nH\n") << text << listed.errors.toStdString();
    }
    EXPECT_EQ(run("ctl --kind SRT --data-dir data --names list").output, "A b\n");
    EXPECT_EQ(
        run("export VANTLE_DATA_DIR=data; ctl --data-dir data set 'A b' portNumber=7 --json streamingURL=x")
            .exitCode,
        0);
    EXPECT_TRUE(run("ctl list --help").output.contains("--kind"));
    EXPECT_TRUE(run("ctl --version").output.startsWith("vantlectl "));
}

TEST_F(CommandLine, OnlyAddingMakesTheFolder)
{
    for (const char *const command :
         {"list", "watch", "show A", "export A -", "export --all out", "set A portNumber=1", "rename A B",
          "remove A", "duplicate A", "ffmpeg A"}) {
        for (const std::string folder : {"typo", "empty"}) {
            const Finished refused = run("mkdir -p empty; ctl --data-dir " + folder + ' ' + command +
                                         " && exit 9; ls -A empty; test ! -e typo");
            EXPECT_EQ(refused.exitCode, 0) << command;
            EXPECT_EQ(refused.output, "") << command;
            EXPECT_TRUE(refused.errors.contains("there is no such"))
                << command << refused.errors.toStdString();
        }
    }
    EXPECT_EQ(run("ctl add HLS --data-dir new").output, "HLS Preset\n");
}

TEST_F(CommandLine, ServesTheDirectoryThatTheOthersUse)
{
    m_folder.write("ask", "Content-Length: 46\r\n\r\n"
                          R"({"jsonrpc":"2.0","id":1,"method":"initialize"})");
    m_folder.write("set", "Content-Length: 94\r\n\r\n"
                          R"({"jsonrpc":"2.0","id":1,"method":"set",)"
                          R"("params":{"name":"A b","assignments":["portNumber=7"]}})");
    const QByteArray ours = R"("dataDirectory":"data")";
    const QByteArray saved = "vantlectl: Preset Saved: ";
    const struct
    {
        const char *text;
        int exitCode;
        QByteArray output;
        QByteArray errors;
    } rows[] = {
        {"ctl serve --data-dir data <ask", 0, ours, ""},
        {"ctl --data-dir /nowhere serve --data-dir data <ask", 0, ours, ""},
        {"export VANTLE_DATA_DIR=data; ctl serve <ask", 0, ours, ""},
        {"mkdir empty; ctl serve --data-dir empty <ask", 0, R"("dataDirectory":"empty")", ""},
        {"ctl serve -q --data-dir data <set", 0, R"("stamp")", ""},
        {"ctl serve --data-dir data <set", 0, R"("stamp")", saved},
        {"ctl serve --data-dir '' <ask", 2, "", "the name of the folder is empty"},
        {"ctl serve --data-dir typo <ask", 1, "", "typo: there is no such directory"},
    };
    for (const auto &row : rows) {
        const Finished finished = run(row.text);
        EXPECT_EQ(finished.exitCode, row.exitCode) << row.text;
        EXPECT_TRUE(finished.output.contains(row.output)) << row.text << finished.output.toStdString();
        EXPECT_TRUE(finished.errors.contains(row.errors)) << row.text << finished.errors.toStdString();
        EXPECT_EQ(finished.errors.isEmpty(), row.errors.isEmpty()) << finished.errors.toStdString();
    }
    EXPECT_NE(run("test -e typo").exitCode, 0);
}

TEST_F(CommandLine, WhatIsMissingOrTooMuchIsNamed)
{
    const struct
    {
        const char *text;
        const char *complaint;
    } rows[] = {
        {"ctl --data-dir list",
         "the subcommand is missing: \"list\" was taken for the value of --data-dir\n"},
        {"ctl --json --data-dir=data", "the subcommand is missing\n"},
        {"ctl --data-dir", "the subcommand is missing\n"},
        {"ctl obs --status --host ''",
         "--host: the name is empty; leave it out for the OBS on this machine\n"},
        {"ctl obs --status --host 127.0.0.1:4455", "--host takes a name or an address alone"},
        {"ctl obs --status --partly", "--partly is for a preset that is applied; leave it out\n"},
    };
    for (const auto &row : rows) {
        const Finished refused = run(row.text);
        EXPECT_EQ(refused.exitCode, 2) << row.text;
        EXPECT_TRUE(refused.errors.contains(row.complaint)) << row.text << refused.errors.toStdString();
    }
}

TEST_F(CommandLine, QuietSaysWhatWasAskedForAndWhatWentWrong)
{
    const struct
    {
        const char *text;
        const char *output;
        const char *errors;
    } rows[] = {
        {"ctl -q add Facebook --name F --data-dir data", "", ""},
        {"ctl show F --data-dir data --quiet | head -n 1", "F (Facebook)\n", ""},
        {"ctl set F portNumber=2 --json --data-dir data --quiet", "", ""},
        {"ctl list --quiet --names --data-dir data", "A b\nF\nH\n", ""},
        {"ctl remove X --quiet --data-dir data || true", "", "vantlectl: there is no preset named \"X\"\n"},
    };
    for (const auto &row : rows) {
        const Finished finished = run(row.text);
        EXPECT_EQ(finished.output, row.output) << row.text;
        EXPECT_EQ(finished.errors, row.errors) << row.text;
    }
}

TEST_F(CommandLine, BashCompletesCommandsNamesFieldsAndValues)
{
    const struct
    {
        const char *words; ///< the last one is completed
        const char *replies;
    } rows[] = {
        {"(vantlectl du)", "duplicate\n"},
        {"(vantlectl --data-dir data re)", "rename\nremove\n"},
        {"(vantlectl remove --data-dir data '')", "A\\ b\nH\n"},
        {"(vantlectl --data-dir = data set A)", "A\\ b\n"},
        {"(vantlectl --data-dir data set 'A\\ b' po)", "portNumber=\n"},
        {"(vantlectl set H --data-dir data po)", ""},
        {"(vantlectl set --data-dir data 'A\\ b' portNumber = 7 videoSettings.0.codec = '')",
         "H.264\nHEVC\n"},
        {"(vantlectl set --data-dir data 'A\\ b' videoSettings.1.resolution = 12)", "1280\\ x\\ 720\n"},
        {"(vantlectl set --data-dir data 'A\\ b' authenticate =)", "false\ntrue\n"},
        {"(vantlectl set --data-dir data H videoSettings.0.profile = H264_High_4_)",
         "H264_High_4_0\nH264_High_4_1\nH264_High_4_2\n"},
        {"(vantlectl import --re)", "--replace\n"},
    };
    for (const auto &row : rows) {
        const Finished finished =
            runProcess({"/bin/bash", "-c",
                        "cd '" + m_folder.path() +
                            "'; vantlectl() { " VANTLECTL " \"$@\"; }; compopt() { :; }; complete() { :; };"
                            "source " VANTLE_COMPLETION "; COMP_WORDS=" +
                            row.words +
                            "; COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _vantlectl;"
                            "((${#COMPREPLY[@]} == 0)) || printf '%s\\n' \"${COMPREPLY[@]}\""});
        EXPECT_EQ(finished.output, row.replies) << row.words << finished.errors.toStdString();
    }
}

} // namespace
} // namespace vantle::test
