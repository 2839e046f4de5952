// SPDX-License-Identifier: MIT
#include "tests/support/ChildProcess.h"
#include "tests/support/FinishedProcess.h"
#include "tests/support/QtPrinters.h"
#include "tests/support/SecretDocuments.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

namespace vantle::test {
namespace {

/// Runs vantlectl and looks for the secret in all that it says.
class Secrets : public testing::Test
{
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(m_data.path("Orvalle/Streaming Presets"));
        for (const SecretDocument &document : secretDocuments())
            m_data.write("Orvalle/Streaming Presets/" + document.name + ".json", document.text);
    }

    Finished quiet(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), VANTLECTL);
        const Finished run = runProcess(arguments);
        EXPECT_FALSE(run.output.contains(kSecret) || run.errors.contains(kSecret))
            << testing::PrintToString(arguments) << '\n'
            << run.output.toStdString() << run.errors.toStdString();
        return run;
    }

    Finished quietInStore(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.end(), {"--data-dir", m_data.path()});
        return quiet(arguments);
    }

    [[nodiscard]] std::string file(const std::string &name) const
    {
        return m_data.path("Orvalle/Streaming Presets") / (name + ".json");
    }

    TemporaryFolder m_data;
    TemporaryFolder m_out;
};

TEST_F(Secrets, StayOutOfWhatFilesAreSaidToHold)
{
    for (const SecretDocument &document : secretDocuments()) {
        SCOPED_TRACE(document.name);
        const int exitCode = document.isGood ? 0 : 1;
        EXPECT_EQ(quiet({"validate", file(document.name)}).exitCode, exitCode);
        EXPECT_EQ(quiet({"validate", "--json", file(document.name)}).exitCode, exitCode);
        EXPECT_EQ(quiet({"show", file(document.name)}).exitCode, exitCode);
        EXPECT_EQ(quiet({"show", "--json", file(document.name)}).exitCode, exitCode);
        EXPECT_EQ(quiet({"convert", file(document.name), m_out.path("converted.json")}).exitCode, exitCode);
    }
    const auto revealed = runProcess({VANTLECTL, "show", "--reveal", file("YouTube")});
    EXPECT_EQ(revealed.output.count(kSecret), 2); // asked for
}

TEST_F(Secrets, StayOutOfWhatTheStoreSays)
{
    EXPECT_THAT(quietInStore({"list"}).errors.toStdString(), testing::HasSubstr("Error loading Preset"));
    quietInStore({"list", "--names"});
    quietInStore({"list", "--json"});
    for (const SecretDocument &document : secretDocuments()) {
        if (!document.isGood)
            continue;
        SCOPED_TRACE(document.name);
        EXPECT_EQ(quietInStore({"show", document.name}).exitCode, 0);
        EXPECT_EQ(quietInStore({"show", "--json", document.name}).exitCode, 0);
        EXPECT_EQ(quietInStore({"export", document.name, "-"}).exitCode, 0);
        EXPECT_EQ(quietInStore({"export", document.name, m_out.path("e.json"), "--json"}).exitCode, 0);
        EXPECT_FALSE(m_out.content("e.json").contains(kSecret));
        EXPECT_EQ(quietInStore({"duplicate", document.name, "--json"}).exitCode, 0);
        EXPECT_EQ(quietInStore({"set", document.name, "videoSettings.0.pid=1", "--json"}).exitCode, 0);
        EXPECT_EQ(quietInStore({"remove", document.name, "--json"}).exitCode, 0);
    }
}

TEST_F(Secrets, StayOutOfEncoderCommandLines)
{
    for (const SecretDocument &document : secretDocuments()) {
        SCOPED_TRACE(document.name);
        for (const char *port : {"portNumber=443", "portNumber=0"}) // the latter is refused
            for (const std::string &key : {"streamKey=" + std::string(kSecret), std::string("streamKey=")}) {
                quiet({"ffmpeg", file(document.name), port, key});
                quietInStore({"ffmpeg", document.name, "--json", port, key});
            }
    }
    const std::string address = std::string("rtmp://me:") + kSecret + "@host/app/" + kSecret;
    EXPECT_EQ(quiet({"ffmpeg", file("YouTube"), "--output", address}).exitCode, 0);
    EXPECT_EQ(runProcess({VANTLECTL, "ffmpeg", "--reveal", file("YouTube")}).output.count(kSecret), 2);
}

TEST_F(Secrets, StayOutOfWhatWatchPrints)
{
    for (const std::string format : {"", "--json"}) {
        runScript(m_data.path("Orvalle/Streaming Presets"), "cp SRT.json Last.json");
        ChildProcess watch(
            {"/bin/sh", "-c",
             "exec '" VANTLECTL "' watch " + format + " --data-dir '" + m_data.path() + "' 2>&1"});
        std::string said;
        const auto readTo = [&](const std::string &what) {
            for (std::string line; line.find(what) == std::string::npos; said += line + '\n') {
                line = watch.receive();
                ASSERT_NE(line, "") << said;
            }
        };
        readTo("watching");
        runScript(
            m_data.path("Orvalle/Streaming Presets"),
            "cp YouTube.json 'New one.json'; cp 'as port.json' 'Bad one.json'; cat RTMP.json > HLS.json;"
            "cat 'no comma.json' > Wowza.json; rm -f Facebook.json");
        readTo("Error loading Preset Bad one");
        runScript(m_data.path("Orvalle/Streaming Presets"), "rm Last.json 'New one.json' 'Bad one.json'");
        readTo("Last");
        ::kill(watch.id(), SIGTERM);
        for (std::string line = watch.receive(); !line.empty(); line = watch.receive())
            said += line + '\n';
        EXPECT_EQ(said.find(kSecret), std::string::npos) << said;
    }
}

TEST_F(Secrets, StayOutOfImports)
{
    const TemporaryFolder empty;
    for (const SecretDocument &document : secretDocuments())
        EXPECT_EQ(quiet({"import", file(document.name), "--json", "--data-dir", empty.path()}).exitCode,
                  document.isGood ? 0 : 1)
            << document.name;
}

TEST_F(Secrets, StayOutOfComplaintsAboutCommandLines)
{
    const std::string secret(kSecret);
    for (const std::vector<std::string> &arguments : std::initializer_list<std::vector<std::string>>{
             {"set", "YouTube", "streamKey", secret},
             {"set", "YouTube", "authenticationPassword=", secret},
             {"set", "YouTube", "stream key=" + secret},
             {"set", "YouTube", secret + "=="},
             {"set", "YouTube", "portNumber=" + secret},
             {"set", "YouTube", "isBackup=" + secret},
             {"set", "YouTube", "videoSettings.0.codec=" + secret},
             {"set", "YouTube", "videoSettings.9.codec=" + secret},
             {"set", "RTMP", "streamKey=" + secret},
             {"set", "SRT", "authenticationPassword=" + secret},
             {"set", "nobody", "streamKey=" + secret},
             {"set", "YouTube", "isBackup=true", "--streamKey=" + secret},
             {"list", "streamKey=" + secret + " " + secret}})
        EXPECT_NE(quietInStore(arguments).exitCode, 0) << testing::PrintToString(arguments);
    EXPECT_EQ(quietInStore({"set", "YouTube", "streamKey=" + secret, "--json"}).exitCode, 0);
}

} // namespace
} // namespace vantle::test
