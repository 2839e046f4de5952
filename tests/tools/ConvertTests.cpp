// SPDX-License-Identifier: MIT
#include "tests/support/FinishedProcess.h"
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace vantle::test {
namespace {

TEST(Convert, WritesTheDocumentPrettyPrinted)
{
    const TemporaryFolder folder;
    const std::string source = folder.write("in\xFF.json", presetText("Facebook").reversed().text());
    const std::string target = folder.path("out.json");
    const Finished run = runProcess({VANTLECTL, "convert", source, target});
    EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
    EXPECT_TRUE(run.output.endsWith("out.json  Facebook  1 rendition, 1 track\n"));
    const QByteArray expected =
        decodePreset(presetText("Facebook").text())->encoded(document::Format::pretty);
    EXPECT_EQ(folder.content("out.json"), expected);

    ASSERT_EQ(::chmod(source.c_str(), 0640), 0);
    EXPECT_EQ(runProcess({VANTLECTL, "convert", source, source}).exitCode, 0) << "a file onto itself";
    EXPECT_EQ(folder.content("in\xFF.json"), expected);
    EXPECT_EQ(std::filesystem::status(source).permissions(), std::filesystem::perms(0640));
}

TEST(Convert, RefusalsNameTheFileAndLeaveEverythingAsItWas)
{
    const TemporaryFolder folder;
    const std::string good = folder.write("good.json", presetText("HLS").text());
    const std::string bad = folder.write("bad.json", "[]");
    const auto before = folder.names();
    struct Row
    {
        std::string source, target, complaint;
    };
    for (const Row &row : {Row{bad, good, bad + ": expected an object, found an array"},
                           {good, folder.path(), folder.path() + ": Is a directory"},
                           {good, folder.path("no/out.json"),
                            folder.path("no/out.json").string() + ": No such file or directory"}}) {
        const Finished run = runProcess({VANTLECTL, "convert", row.source, row.target}, "/dev/null");
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.errors.toStdString(), "vantlectl: " + row.complaint + '\n');
    }
    EXPECT_EQ(folder.names(), before);
    EXPECT_EQ(folder.content("good.json"), presetText("HLS").text());
}

} // namespace
} // namespace vantle::test
