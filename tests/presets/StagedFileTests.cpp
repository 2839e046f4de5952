// SPDX-License-Identifier: MIT
#include "VantlePresets/document/StagedFile.h"
#include "tests/support/OtherUser.h"
#include "tests/support/QtPrinters.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdarg>
#include <functional>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
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
    constexpr uid_t kOther = 12345;
    const bool isRoot = ::geteuid() == 0; // only root may give files away
    if (isRoot) {
        ASSERT_EQ(::chown(path.c_str(), kOther, kOther + 1), 0);
    }
    ASSERT_EQ(::chmod(path.c_str(), 06640), 0);
    const struct stat before = statusOf(path);
    replace(path, "new");
    const struct stat after = statusOf(path);
    EXPECT_NE(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode & 07777, 0640u) << "and no set-id bits, which would become the writer's";
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_EQ(after.st_gid, before.st_gid);
}

/// An access list as the system keeps it: the owner and user 12345 may read and write, the group may not.
QByteArray accessList()
{
    QByteArray list("\2\0\0\0", 4);
    const auto entry = [&list](char tag, char permissions, quint32 id) {
        for (const char byte : {tag, char{0}, permissions, char{0}})
            list.append(byte);
        for (int byte = 0; byte < 4; ++byte)
            list.append(static_cast<char>(id >> 8 * byte));
    };
    entry(0x01, 6, ~0U);
    entry(0x02, 6, 12345);
    entry(0x04, 0, ~0U);
    entry(0x10, 6, ~0U);
    entry(0x20, 0, ~0U);
    return list;
}

TEST(StagedFile, KeepsTheAccessListOfTheFileReplacedOrLike)
{
    const TemporaryFolder folder;
    const auto path = folder.write("Show.json", "old");
    constexpr const char *kName = "system.posix_acl_access";
    const QByteArray list = accessList();
    if (::setxattr(path.c_str(), kName, list.constData(), static_cast<std::size_t>(list.size()), 0) != 0)
        GTEST_SKIP() << "the file system has no access lists";
    replace(path, "new");
    StagedFile(folder.path("Copy.json"), "new", StagedFile::Access::asBefore, path).commit();
    std::filesystem::create_symlink("Show.json", folder.path("Link.json"));
    replace(folder.path("Link.json"), "new");
    for (const char *name : {"Show.json", "Copy.json", "Link.json"}) {
        QByteArray kept(256, '\0');
        kept.resize(std::max<ssize_t>(::getxattr(folder.path(name).c_str(), kName, kept.data(), 256), 0));
        EXPECT_EQ(kept, list) << name;
        EXPECT_EQ(statusOf(folder.path(name)).st_mode & 0777, 0660U) << name;
    }
    replace(folder.path("Plain.json"), "new");
    EXPECT_LE(::getxattr(folder.path("Plain.json").c_str(), kName, nullptr, 0), 0);
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

/// What runs just before a temporary file is made.
std::function<void(int folder, const char *name)> beforeCreation;

TEST(StagedFile, ANameThatSomebodyGuessedIsNeitherFollowedNorTaken)
{
    const TemporaryFolder folder;
    folder.write("elsewhere", "untouched");
    for (const char *target : {"elsewhere", "nowhere"}) {
        std::string planted;
        beforeCreation = [&](int at, const char *name) {
            if (!planted.empty())
                return;
            planted = name;
            EXPECT_EQ(::symlinkat(target, at, name), 0);
        };
        replace(folder.path("Show.json"), "new");
        beforeCreation = {};
        EXPECT_EQ(folder.content("Show.json"), "new");
        EXPECT_EQ(folder.content("elsewhere"), "untouched");
        EXPECT_EQ(folder.names(), (Names{planted, "Show.json", "elsewhere"}));
        std::filesystem::remove(folder.path(planted));
    }
}

TEST(StagedFile, WithoutATemporaryNameNobodySaysThatTheFilesOwnIsTaken)
{
    const TemporaryFolder folder;
    beforeCreation = [](int at, const char *name) { EXPECT_EQ(::symlinkat("nowhere", at, name), 0); };
    EXPECT_EQ(errorOf([&] { replace(folder.path("Show.json"), "new"); }),
              make_error_code(FileFault::noTemporary));
    beforeCreation = {};
}

TEST(StagedFile, CleaningUpTakesLeftoversAndFollowsNoLink)
{
    const TemporaryFolder folder;
    folder.write("elsewhere", "untouched");
    folder.write(".vantle-leftover", "half");
    folder.write(".vantle-UPPERCAS", "somebody's");
    std::filesystem::create_symlink("elsewhere", folder.path(".vantle-linklink"));
    std::filesystem::create_directory(folder.path(".vantle-dirdirdi"));
    ASSERT_EQ(::mkfifo(folder.path(".vantle-fifofifo").c_str(), 0600), 0);
    const StagedFile inUse(folder.path("Show.json"), "new");
    removeLeftoverFiles(folder.path());
    EXPECT_EQ(folder.names().size(), 5u) << "with the one in use";
    EXPECT_THAT(folder.names(), testing::IsSupersetOf({".vantle-UPPERCAS", ".vantle-dirdirdi",
                                                       ".vantle-linklink", "elsewhere"}));
    EXPECT_EQ(folder.content("elsewhere"), "untouched");
}

TEST(StagedFile, MembersOfTheFoldersGroupReplaceEachOthersFilesAndNobodyElseDoes)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "taking another user needs root";
    constexpr uid_t kAna = 12345;
    constexpr uid_t kBen = 12346;
    constexpr gid_t kMembers = 23456;
    const TemporaryFolder folder;
    ASSERT_EQ(::chown(folder.path().c_str(), 0, kMembers), 0);
    ASSERT_EQ(::chmod(folder.path().c_str(), 02770), 0);
    const auto path = folder.path("Show.json");
    const auto expect = [&](uid_t owner, mode_t mode) {
        EXPECT_EQ(statusOf(path).st_uid, owner);
        EXPECT_EQ(statusOf(path).st_gid, kMembers);
        EXPECT_EQ(statusOf(path).st_mode & 07777, mode);
    };
    const mode_t oldMask = ::umask(0022);
    {
        const OtherUser ana(kAna, kMembers);
        replace(path, "hers");
        expect(kAna, 0644);
    }
    {
        const OtherUser ben(kBen, kMembers);
        EXPECT_EQ(errorOf([&] { writeFileInPlace(path, "his"); }), std::errc::permission_denied);
        replace(path, "his");
        expect(kBen, 0644);
    }
    {
        const OtherUser stranger(kBen, kMembers + 1);
        EXPECT_EQ(errorOf([&] { replace(path, "nobody's"); }), std::errc::permission_denied);
        EXPECT_EQ(errorOf([&] { static_cast<void>(readFile(path)); }), std::errc::permission_denied);
    }
    ::umask(oldMask);
    EXPECT_EQ(folder.content("Show.json"), "his");
}

TEST(StagedFile, ACopyWhoseGroupCantBeKeptIsOpenToItsOwnAsItWasToOthers)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "taking another user needs root";
    constexpr uid_t kAna = 12345;
    const TemporaryFolder folder;
    ASSERT_EQ(::chown(folder.path().c_str(), kAna, kAna), 0);
    for (const auto &[source, copy] :
         {std::pair{0644, 0644}, {0664, 0644}, {0666, 0666}, {0640, 0600}, {0604, 0604}}) {
        const auto path = folder.path("source.json");
        folder.write("source.json", "root's");
        ASSERT_EQ(::chmod(path.c_str(), static_cast<mode_t>(source)), 0);
        const OtherUser ana(kAna, kAna);
        StagedFile staged(folder.path("copy.json"), "hers", StagedFile::Access::asBefore, path);
        staged.commit(StagedFile::Target::replace);
        EXPECT_EQ(statusOf(folder.path("copy.json")).st_mode & 07777, static_cast<mode_t>(copy)) << source;
        std::filesystem::remove(folder.path("copy.json"));
    }
}

TEST(StagedFile, TakesTheLongestNames)
{
    const TemporaryFolder folder;
    replace(folder.path(std::string(250, 'a').append(".json")), "new");
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

/// Stands before the C library's: the one moment at which a planted name could be met.
extern "C" int openat(int folder, const char *path, int flags, ...)
{
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0) {
        va_list rest;
        va_start(rest, flags);
        mode = va_arg(rest, mode_t);
        va_end(rest);
        if (vantle::test::beforeCreation)
            vantle::test::beforeCreation(folder, path);
    }
    return static_cast<int>(::syscall(SYS_openat, folder, path, flags, mode));
}
