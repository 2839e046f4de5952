// SPDX-License-Identifier: MIT
#include "tests/support/ChildProcess.h"
#include "tests/support/FinishedProcess.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>

namespace vantle::test {
namespace {

/// A data directory with one sample in its presets folder.
class CommandLineHost : public testing::Test
{
protected:
    CommandLineHost() { putSample("Remote Contribution"); }

    void putSample(const std::string &name) const
    {
        const auto folder = m_data.path("Orvalle/Streaming Presets");
        std::filesystem::create_directories(folder);
        std::filesystem::copy(VANTLE_SAMPLES "/" + name + ".json", folder);
    }

    TemporaryFolder m_data;
};

TEST_F(CommandLineHost, PrintsWhatAnEncoderNeeds)
{
    const Finished run = runProcess({ENCODER_SETTINGS, "--data-dir", m_data.path(), "Remote Contribution"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.output.startsWith("Remote Contribution (SRT)\n"
                                      "video  3840 x 2160  AVVideoCodecTypeHEVC  "
                                      "kVTProfileLevel_HEVC_Main10_AutoLevel  25000 kbit/s  59.94 fps\n"))
        << run.output.toStdString();
    EXPECT_TRUE(run.output.contains("audio  0x61616320  48000 Hz  256 kbit/s  en  default\n"));
    EXPECT_EQ(runProcess({ENCODER_SETTINGS, "--data-dir", m_data.path(), "None"}).exitCode, 1);
}

TEST(RunEncoder, PrintsTheLineRunsItAndKeepsTheKeyToItself)
{
    const std::string sample = VANTLE_SAMPLES "/YouTube Premiere.json";
    // Nobody listens on port 1: the encoder prints the address that it could not reach.
    const std::string address = "rtmp://127.0.0.1:1/live2/k3y-of-the-day";
    const Finished line = runProcess({RUN_ENCODER, sample, "--output", address});
    EXPECT_EQ(line.exitCode, 0);
    EXPECT_TRUE(line.output.startsWith("ffmpeg ")) << line.output.toStdString();
    EXPECT_TRUE(line.output.endsWith("'rtmp://127.0.0.1:1/live2/********'\n"));
    const Finished run = runProcess({RUN_ENCODER, "--run", sample, "--output", address});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.errors.contains("rtmp://127.0.0.1:1/live2/********")) << run.errors.toStdString();
    EXPECT_FALSE(run.errors.contains("k3y-of-the-day"));
    EXPECT_EQ(runProcess({RUN_ENCODER, sample, "--output", "a b"}).errors,
              "run_encoder: --output: is no host and no URL\n");
}

TEST_F(CommandLineHost, EndsWhenThereIsNoFolderToRead)
{
    std::filesystem::remove_all(m_data.path("Orvalle/Streaming Presets"));
    m_data.write("Orvalle/Streaming Presets", {});
    for (const std::vector<std::string> &command :
         {std::vector<std::string>{ENCODER_SETTINGS, "A"}, {GLIB_HOST}}) {
        std::vector<std::string> arguments = command;
        arguments.insert(arguments.end(), {"--data-dir", m_data.path()});
        const Finished run = runProcess(arguments);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_TRUE(run.errors.endsWith("/Orvalle/Streaming Presets: Not a directory\n"));
    }
}

TEST_F(CommandLineHost, FollowsTheListOnTheLoopOfGlib)
{
    ChildProcess host({GLIB_HOST, "--data-dir", m_data.path()});
    EXPECT_EQ(host.receive(), "presets: Remote Contribution");
    putSample("YouTube Premiere");
    EXPECT_EQ(host.receive(), "presets: Remote Contribution, YouTube Premiere");
    ::kill(host.id(), SIGTERM);
    EXPECT_EQ(host.finish(), 0);
}

TEST_F(CommandLineHost, FollowsAndEditsThroughAHelperWithoutQt)
{
    const std::string field = "portNumber=9001";
    for (const std::vector<std::string> &command :
         {std::vector<std::string>{GLIB_CLIENT, VANTLECTL, m_data.path(), "Remote Contribution", field},
          {"/usr/bin/env", "PYTHONPATH=" PYTHON_FOLDER, PYTHON, FOLLOW_PY, "--data-dir", m_data.path(),
           "--program", VANTLECTL, "Remote Contribution", field}}) {
        std::filesystem::remove(m_data.path("Orvalle/Streaming Presets/YouTube Premiere.json"));
        ChildProcess host(command);
        EXPECT_EQ(host.receive(), "presets: Remote Contribution");
        EXPECT_EQ(host.receive(), "changed: Remote Contribution");
        EXPECT_EQ(host.receive(), "presets: Remote Contribution");
        putSample("YouTube Premiere");
        EXPECT_EQ(host.receive(), "presets: Remote Contribution, YouTube Premiere");
        ::kill(host.id(), SIGTERM);
        EXPECT_EQ(host.finish(), 0);
    }
}

} // namespace
} // namespace vantle::test
