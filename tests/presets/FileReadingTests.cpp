// SPDX-License-Identifier: MIT
#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/model/HLSVantlePreset.h"
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SRTVantlePreset.h"
#include "tests/support/LogCapture.h"
#include "tests/support/OtherUser.h"
#include "tests/support/PresetDocuments.h"
#include "tests/support/QtPrinters.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace vantle::test {
namespace {

using namespace Qt::StringLiterals;

std::error_code errorOf(const std::filesystem::path &path)
{
    try {
        (void)readFile(path);
        return {};
    } catch (const std::system_error &error) {
        EXPECT_EQ(error.what(), error.code().message()) << "the bare reason";
        return error.code();
    }
}

TEST(FileReading, WhatIsNoReadableFileIsAnErrorAtOnce)
{
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo(folder.path("fifo.json").c_str(), 0600), 0);
    std::filesystem::create_directory(folder.path("folder.json"));
    std::filesystem::create_symlink("loop.json", folder.path("loop.json"));
    std::filesystem::create_symlink("fifo.json", folder.path("link.json"));
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {AF_UNIX, {}};
    folder.path("socket.json").native().copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    ::close(socket);

    EXPECT_EQ(errorOf(folder.path("fifo.json")), make_error_code(FileFault::notRegular));
    EXPECT_EQ(errorOf(folder.path("link.json")), make_error_code(FileFault::notRegular));
    EXPECT_EQ(errorOf(folder.path("socket.json")), make_error_code(FileFault::notRegular));
    EXPECT_EQ(errorOf("/dev/zero"), make_error_code(FileFault::notRegular));
    EXPECT_EQ(errorOf(folder.path("folder.json")), std::errc::is_a_directory);
    EXPECT_EQ(errorOf(folder.path("loop.json")), std::errc::too_many_symbolic_link_levels);
    EXPECT_EQ(errorOf(folder.path("missing.json")), std::errc::no_such_file_or_directory);
}

TEST(FileReading, PermissionDeniedIsCalledSo)
{
    constexpr auto kMode = std::filesystem::perms::owner_all;
    const TemporaryFolder folder;
    const auto closed = folder.write("closed.json", "{}");
    const auto open = folder.write("open.json", "{}");
    std::filesystem::permissions(folder.path(), kMode | std::filesystem::perms(0055));
    std::filesystem::permissions(closed, std::filesystem::perms::none);
    std::filesystem::permissions(open, std::filesystem::perms(0444));
    constexpr uid_t kNobody = 65534;
    const OtherUser user(kNobody); // as root nothing is denied; anybody else stays who they are
    EXPECT_EQ(errorOf(closed), std::errc::permission_denied);
    EXPECT_EQ(errorOf(open), std::error_code());
}

TEST(FileReading, UpTo16MiBAndNoFurther)
{
    const TemporaryFolder folder;
    const auto path = folder.write("large.json", "{");
    std::filesystem::resize_file(path, kMaximumFileSize); // sparse
    EXPECT_EQ(readFile(path).size(), kMaximumFileSize);
    std::filesystem::resize_file(path, kMaximumFileSize + 1);
    EXPECT_EQ(errorOf(path), make_error_code(FileFault::tooLarge));
}

TEST(FileReading, AFileWithoutAKnownSizeIsReadWhole)
{
    EXPECT_TRUE(readFile("/proc/self/status").contains("\nPid:"));
}

TEST(FileReading, ThePresetIsNamedAfterTheFile)
{
    const TemporaryFolder folder;
    for (const auto &[file, name] : {std::pair{"My Show.json", u"My Show"_s},
                                     {"a.b.json", u"a.b"_s},
                                     {"no extension", u"no extension"_s},
                                     {".json", u".json"_s},
                                     {"Fu\u00df\U0001F600.JSON", u"Fu\u00df\U0001F600"_s},
                                     {"bad\xFF.json", u"bad\uFFFD"_s}}) {
        folder.write(file, presetText("HLS").text());
        EXPECT_EQ(readPresetFile(folder.path(file))->name(), name);
    }
    EXPECT_EQ(HLSVantlePreset::withFileAtPath(folder.pathText("a.b.json"))->name(), u"a.b"_s);
}

TEST(FileReading, ClassReadersTellWhatTheBaseReaderKeepsToItself)
{
    const TemporaryFolder folder;
    const auto path = folder.pathText("Show.json");
    LogCapture log;

    folder.write("Show.json", "not json");
    EXPECT_FALSE(VantlePreset::withFileAtPath(path));
    EXPECT_FALSE(HLSVantlePreset::withFileAtPath(path));
    EXPECT_FALSE(RTMPVantlePreset::withFileAtPath(path));
    EXPECT_FALSE(SRTVantlePreset::withFileAtPath(path));
    EXPECT_EQ(log.lines(), QStringList());

    folder.write("Show.json", presetText("RTMP").without("portNumber").text());
    EXPECT_TRUE(VantlePreset::withFileAtPath(path));
    EXPECT_FALSE(RTMPVantlePreset::withFileAtPath(path));
    EXPECT_EQ(log.lines(), QStringList{u"Error reading file: portNumber: required key is missing"_s});

    folder.write("Show.json", presetText("RTMP").text());
    const auto rtmp = RTMPVantlePreset::withFileAtPath(path);
    ASSERT_TRUE(rtmp);
    EXPECT_EQ(rtmp->authenticationPassword(), u"password"_s);
    EXPECT_EQ(rtmp->name(), u"Show"_s);
}

TEST(FileReading, TheSrtReaderRefusesTheDocumentsOfItsOwnKind)
{
    const TemporaryFolder folder;
    const auto path = folder.pathText("Remote.json");
    ASSERT_TRUE(makePreset(StreamingType::srt, {})->writeToFileAtPath(path));
    LogCapture log;
    EXPECT_TRUE(readPresetFile(folder.path("Remote.json")));
    EXPECT_FALSE(SRTVantlePreset::withFileAtPath(path));
    EXPECT_EQ(log.lines(), QStringList{u"Error reading file: streamingProtocol: required key is missing"_s});

    folder.write("Remote.json", presetText("SRT").text());
    const auto preset = SRTVantlePreset::withFileAtPath(path);
    ASSERT_TRUE(preset);
    EXPECT_EQ(preset->type(), StreamingType::srt);
    EXPECT_EQ(preset->portNumber(), 443);
    EXPECT_EQ(preset->streamKey(), QString()) << "not among what is taken over";
}

TEST(FileReading, WritingInPlaceTellsSuccess)
{
    const TemporaryFolder folder;
    const auto preset = makePreset(StreamingType::hls, u"Other name"_s);
    EXPECT_TRUE(preset->writeToFileAtPath(folder.pathText("Show.json")));
    const auto read = readPresetFile(folder.path("Show.json"));
    EXPECT_EQ(read->name(), u"Show"_s);
    EXPECT_EQ(read->uuid(), preset->uuid());
    EXPECT_FALSE(preset->writeToFileAtPath(folder.pathText("missing/Show.json")));
    EXPECT_FALSE(preset->writeToFileAtPath(u"/dev/full"_s));

    const QByteArray before = folder.content("Show.json");
    preset->videoSettings()[0]->setFrameRate(std::numeric_limits<double>::infinity());
    EXPECT_FALSE(preset->writeToFileAtPath(folder.pathText("Show.json")));
    EXPECT_EQ(folder.content("Show.json"), before) << "what can't be encoded touches no file";
}

} // namespace
} // namespace vantle::test
