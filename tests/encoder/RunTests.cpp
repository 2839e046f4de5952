// SPDX-License-Identifier: MIT
#include "VantlePresets/model/PresetFactory.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FinishedProcess.h"
#include "tests/support/QtPrinters.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>

#include <sys/stat.h>

namespace vantle::test {
namespace {

const std::string kLadder = VANTLE_SAMPLES "/Evening Show Ladder.json";
const std::string kUplink = VANTLE_SAMPLES "/Venue Uplink.json";
const std::string kContribution = VANTLE_SAMPLES "/Remote Contribution.json";

TEST(EncoderRun, SecretsAreMaskedInWhatTheEncoderSays)
{
    // Nobody listens on port 1: the encoder prints the address that it could not reach.
    const Finished run = runProcess({VANTLECTL, "ffmpeg", kUplink, "--run", "streamingURL=127.0.0.1:1/live",
                                     "streamKey=k3y-of-the-venue"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.errors.contains("@127.0.0.1:1/live/********")) << run.errors.toStdString();
    EXPECT_TRUE(run.errors.contains("ffmpeg ended with exit code 1"));
    EXPECT_FALSE(run.errors.contains("k3y-of-the-venue"));
    EXPECT_FALSE(run.errors.contains("not-a-real-password"));
}

TEST(EncoderRun, SignalsEndItWithCompleteFiles)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        const TemporaryFolder folder;
        ChildProcess run({VANTLECTL, "ffmpeg", kLadder, "--run", "--json", "--output", folder.path("out")});
        ASSERT_NE(run.receive(), ""); // it makes progress
        ::kill(run.id(), signal);
        EXPECT_EQ(run.finish(), 0);
        EXPECT_TRUE(folder.content("out/video0/index.m3u8").endsWith("#EXT-X-ENDLIST\n"));
    }
}

TEST(EncoderRun, ADeadInputIsGivenUp)
{
    const TemporaryFolder folder;
    const std::string fifo = folder.path("dead");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    const Finished run = runProcess({VANTLECTL, "ffmpeg", kLadder, "--input", fifo});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.errors, "vantlectl: --input: nothing was learnt of it in 20 seconds\n");
}

TEST(EncoderRun, ProblemsComeBeforeAnythingStarts)
{
    const Finished run =
        runProcess({VANTLECTL, "ffmpeg", kContribution, "--run", "videoSettings.0.pid=4096"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_TRUE(run.errors.startsWith("vantlectl: streamKey: ")) << run.errors.toStdString();
    EXPECT_TRUE(run.errors.contains("\nvantlectl: videoSettings.0.pid: 4096 "));
}

TEST(EncoderRun, PrintsOneLineOrOneArrayWithoutSecrets)
{
    const Finished line = runProcess({VANTLECTL, "ffmpeg", kUplink});
    EXPECT_TRUE(line.output.startsWith("ffmpeg ") && line.output.count('\n') == 1);
    const Finished array = runProcess({VANTLECTL, "ffmpeg", kUplink, "--json"});
    EXPECT_TRUE(array.output.startsWith(R"(["ffmpeg",)") && array.output.endsWith("\"]\n"));
    EXPECT_FALSE(line.output.contains("not-a-real-password"));
    EXPECT_FALSE(array.output.contains("not-a-real-password"));
    EXPECT_TRUE(
        runProcess({VANTLECTL, "ffmpeg", kUplink, "--reveal"}).output.contains("not-a-real-password"));
}

TEST(EncoderRun, AFilesChannelsAreCounted)
{
    const TemporaryFolder folder;
    const std::string stereo = folder.path("stereo.wav");
    runScript(folder.path(), "ffmpeg -v error -f lavfi -i anullsrc=cl=stereo -t 0.1 stereo.wav");
    EXPECT_EQ(runProcess({VANTLECTL, "ffmpeg", kUplink, "--input", stereo}).exitCode, 0);
    const Finished ladder = runProcess({VANTLECTL, "ffmpeg", kLadder, "--input", stereo});
    EXPECT_EQ(ladder.exitCode, 1);
    EXPECT_TRUE(ladder.errors.contains("audioSettings.1.inputChannels: the source has 2 channels"));
    const Finished missing = runProcess({VANTLECTL, "ffmpeg", kLadder, "--input", folder.path("none.wav")});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.errors.contains("No such file or directory")) << missing.errors.toStdString();
}

TEST(EncoderRun, AnEncoderThatIsNotInstalledIsAnError)
{
    const Finished run = runProcess({"/usr/bin/env", "PATH=/nowhere", VANTLECTL, "ffmpeg", kUplink, "--run"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.errors.contains("can't run ffmpeg: ")) << run.errors.toStdString();
}

} // namespace
} // namespace vantle::test
