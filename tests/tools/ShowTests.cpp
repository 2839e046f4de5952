// SPDX-License-Identifier: MIT
#include "tests/support/FinishedProcess.h"
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace vantle::test {
namespace {

TEST(Show, SecretsAreMaskedUnlessRevealed)
{
    const TemporaryFolder folder;
    const std::string file = folder.write("Show.json", presetText("YouTube")
                                                           .with("streamKey", R"("k3y")")
                                                           .with("authenticationPassword", R"("pa55")")
                                                           .text());
    for (const std::vector<std::string> &format : {std::vector<std::string>{}, {"--json"}}) {
        std::vector<std::string> arguments{VANTLECTL, "show", file};
        arguments.insert(arguments.end(), format.begin(), format.end());
        const Finished masked = runProcess(arguments);
        EXPECT_EQ(masked.exitCode, 0);
        EXPECT_TRUE(masked.output.contains("login") && masked.output.contains("********"));
        EXPECT_FALSE(masked.output.contains("k3y") || masked.output.contains("pa55"));
        arguments.push_back("--reveal");
        const Finished revealed = runProcess(arguments);
        EXPECT_TRUE(revealed.output.contains("k3y") && revealed.output.contains("pa55"));
    }
}

TEST(Show, ConnectionsHaveWhatTheKindKeeps)
{
    const TemporaryFolder folder;
    struct Row
    {
        QByteArray kind;
        bool hasServer, hasProtocol, hasKey;
    };
    for (const Row &row : {Row{"HLS", false, false, false},
                           {"RTMP", true, true, false},
                           {"Wowza", true, true, false},
                           {"Facebook", true, true, true},
                           {"SRT", true, false, false}}) {
        const std::string file = folder.write("Show.json", presetText(row.kind).text());
        const QByteArray text = runProcess({VANTLECTL, "show", file}).output;
        EXPECT_TRUE(text.startsWith(QByteArray("Show (" + row.kind + ")\n")));
        EXPECT_EQ(text.contains("Server "), row.hasServer) << row.kind.toStdString();
        EXPECT_EQ(text.contains("Protocol "), row.hasProtocol);
        EXPECT_EQ(text.contains("Stream key "), row.hasKey);
        EXPECT_EQ(text.contains("Password "), row.hasProtocol);
    }
}

TEST(Show, SaysWhetherTheLevelSuffices)
{
    const ObjectText small = videoText().with("profile", R"("H264_Baseline_3_0")");
    const ObjectText unknown = videoText().with("profile", R"("HEVC_Main_AutoLevel")");
    struct Row
    {
        ObjectText video;
        QByteArray lowest, verdict, json;
    };
    const TemporaryFolder folder;
    for (const Row &row : {
             Row{videoText(), "4.0", "fits", R"("bitRateFits":true,"sizeFits":true,"lowestLevel":"4.0"}]}})"},
             {small.with("bitRate", "60000"), "5.0", "bit rate above 10000, frame size and rate too large",
              R"("bitRateFits":false,"sizeFits":false,"lowestLevel":"5.0"}]}})"},
             {unknown, "none", "no such profile for this codec", R"("bitRateFits":false}]}})"},
             {videoText().with("frameRate", "1e300"), "none", "frame size and rate too large to check",
              R"("bitRateFits":true}]}})"},
         }) {
        SCOPED_TRACE(row.video.text().toStdString());
        const std::string file =
            folder.write("Show.json", presetText("HLS").with("videoSettings", list({row.video})).text());
        const QByteArray text = runProcess({VANTLECTL, "show", file}).output;
        const QList<QByteArray> lines = text.split('\n');
        ASSERT_GT(lines.size(), 4);
        const qsizetype lowestAt = lines[3].indexOf("Lowest level");
        const qsizetype verdictAt = lines[3].indexOf("Level check");
        EXPECT_EQ(lines[4].mid(lowestAt, verdictAt - lowestAt).trimmed(), row.lowest);
        EXPECT_EQ(lines[4].mid(verdictAt), row.verdict);

        const QByteArray json = runProcess({VANTLECTL, "show", "--json", file}).output;
        EXPECT_TRUE(json.endsWith(QByteArray(row.json + "\n"))) << json.toStdString();
    }
}

TEST(Show, ForMachinesIsTheDocumentOnOneLineBetweenNameAndWhatIsDerived)
{
    const TemporaryFolder folder;
    for (const QByteArray kind : {"HLS", "YouTube", "RTMP", "Wowza", "Facebook", "SRT"}) {
        const auto preset = decodePreset(presetText(kind).text());
        const std::string file = folder.write("A \"B\".json", preset->encoded(document::Format::pretty));
        const QByteArray document = preset->encoded(document::Format::compact);
        const QByteArray json = runProcess({VANTLECTL, "show", "--json", "--reveal", file}).output;
        const QByteArray begin = R"({"name":"A \"B\"",)" + document.sliced(1, document.size() - 2) +
                                 R"(,"derived":{"videoSettings":[{"width":1920,)";
        EXPECT_TRUE(json.startsWith(begin)) << json.toStdString();
        EXPECT_EQ(json.count('\n'), 1);
    }
}

TEST(Show, WhatCantBeReadIsAComplaint)
{
    const TemporaryFolder folder;
    const std::string file =
        folder.write("a\xFF\n.json", presetText("RTMP").with("portNumber", "\"1\"").text());
    const Finished run = runProcess({VANTLECTL, "show", file});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_TRUE(
        run.errors.endsWith("a\xEF\xBF\xBD\\u000a.json: portNumber: expected an integer, found a string\n"))
        << run.errors.toStdString();
}

} // namespace
} // namespace vantle::test
