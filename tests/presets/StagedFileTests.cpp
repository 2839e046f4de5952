// SPDX-License-Identifier: MIT
#include "VantlePresets/document/FileAccess.h"
#include "tests/support/QtPrinters.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantle::test {
namespace {

using Names = std::set<std::string>;

struct stat statusOf(const std::filesystem::path &path)
{
    struct stat status = {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0);
    return status;
}

void replace(const std::filesystem::path &path, QByteArrayView content)
{
    StagedFile file(path, content);
    file.commit();
}

TEST(StagedFile, StandsBesideItsTargetUntilCommitted)
{
    const TemporaryFolder folder;
    const auto path = folder.write("Show.json", "old");
    {
        StagedFile file(path, "new");
        EXPECT_EQ(folder.content("Show.json"), "old");
        const Names names = folder.names();
        ASSERT_EQ(names.size(), 2u);
        EXPECT_THAT(*names.begin(), testing::MatchesRegex("\\.vantle-[a-z0-9]{8}"));
        // Whoever cleans up can see that it is in use.
        const int other = ::open(folder.path(*names.begin()).c_str(), O_RDONLY);
        EXPECT_EQ(::flock(other, LOCK_EX | LOCK_NB), -1);
        ::close(other);
        file.commit();
        EXPECT_EQ(folder.content("Show.json"), "new");
    }
    EXPECT_EQ(folder.names(), Names{"Show.json"});
    {
        const StagedFile abandoned(path, "newer");
    }
    EXPECT_EQ(folder.names(), Names{"Show.json"});
    EXPECT_EQ(folder.content("Show.json"), "new");
}

TEST(StagedFile, KeepsModeOwnerAndGroupOfTheFileReplaced)
{
    const TemporaryFolder folder;
    const auto path = folder.write("Show.json", "old");
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    constexpr uid_t kOther = 12345;
    const bool isRoot = ::geteuid() == 0; // only root may give files away
    if (isRoot) {
        ASSERT_EQ(::chown(path.c_str(), kOther, kOther + 1), 0);
    }
    const struct stat before = statusOf(path);
    replace(path, "new");
    const struct stat after = statusOf(path);
    EXPECT_NE(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_EQ(after.st_gid, before.st_gid);
}

TEST(StagedFile, NewFilesObeyTheUmaskAndTheFolder)
{
    const TemporaryFolder folder;
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(folder.path().c_str(), static_cast<uid_t>(-1), 23456), 0);
    }
    ASSERT_EQ(::chmod(folder.path().c_str(), 02770), 0);
    const mode_t old = ::umask(0027);
    replace(folder.path("Show.json"), "new");
    ::umask(old);
    EXPECT_EQ(statusOf(folder.path("Show.json")).st_mode & 07777, 0640u);
    EXPECT_EQ(statusOf(folder.path("Show.json")).st_gid, statusOf(folder.path(".")).st_gid);
}

TEST(StagedFile, ReplacesALinkInsteadOfFollowingIt)
{
    const TemporaryFolder folder;
    folder.write("elsewhere", "untouched");
    std::filesystem::create_symlink("elsewhere", folder.path("Show.json"));
    replace(folder.path("Show.json"), "new");
    EXPECT_FALSE(std::filesystem::is_symlink(folder.path("Show.json")));
    EXPECT_EQ(folder.content("Show.json"), "new");
    EXPECT_EQ(folder.content("elsewhere"), "untouched");
}

TEST(StagedFile, TakesTheLongestNames)
{
    const TemporaryFolder folder;
    replace(folder.path(std::string(250, 'a') + ".json"), "new");
    EXPECT_EQ(folder.names().size(), 1u);
}

/// The largest size that a file of this process may have, for a while.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_old);
        const rlimit limit{bytes, m_old.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_old);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit m_old = {};
    void (*m_handler)(int);
};

template <class Action>
std::error_code errorOf(Action action)
{
    try {
        action();
        return {};
    } catch (const std::system_error &error) {
        return error.code();
    }
}

TEST(StagedFile, AFailureLeavesTheOldFileAndNothingElse)
{
    const TemporaryFolder folder;
    const auto path = folder.write("Show.json", "old");
    {
        const FileSizeLimit limit(100); // the first write is short, the next one fails
        EXPECT_EQ(errorOf([&] { replace(path, QByteArray(1000, 'x')); }), std::errc::file_too_large);
    }
    std::filesystem::create_directory(folder.path("folder.json"));
    EXPECT_EQ(errorOf([&] { replace(folder.path("folder.json"), "new"); }), std::errc::is_a_directory);
    EXPECT_EQ(errorOf([&] { replace(folder.path("missing/a.json"), "new"); }),
              std::errc::no_such_file_or_directory);
    EXPECT_EQ(errorOf([&] { replace(folder.path("Show.json/a.json"), "new"); }), std::errc::not_a_directory);
    for (const auto &name : {std::string(), std::string("."), std::string(".."), std::string("a\0b", 3)})
        EXPECT_EQ(errorOf([&] { replace(std::filesystem::path(folder.path()) / name, "new"); }),
                  make_error_code(FileFault::badName));
    EXPECT_EQ(folder.content("Show.json"), "old");
    EXPECT_EQ(folder.names(), (Names{"Show.json", "folder.json"}));
}

} // namespace
} // namespace vantle::test
