// SPDX-License-Identifier: MIT
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <sys/wait.h>

using namespace vantle::test;

namespace {

TEST(VrxwatchTest, PrintsANameOnOneLineWithoutWhatATerminalWouldObey)
{
    const TemporaryFolder folder;
    ChildProcess program({VRXWATCH, folder.path(), "--latency", "0"}, {});
    ASSERT_EQ(program.receive(), "reloaded");
    const struct
    {
        const char *name, *printed;
    } names[] = {
        {"a\nremoved b", "a\\x0aremoved b"}, {"\x1b[31mred", "\\x1b[31mred"},
        {"back\\slash", "back\\x5cslash"},   {"not \xff UTF-8", "not \\xff UTF-8"},
        {"\u202etxt", "\\xe2\\x80\\xaetxt"}, {"\u00fcber \u65e5\u672c", "\u00fcber \u65e5\u672c"},
    };
    for (const auto &name : names) {
        static_cast<void>(folder.write(name.name, "1"));
        EXPECT_EQ(program.receive(), "added " + folder.path() + '/' + name.printed);
        EXPECT_EQ(program.receive(), "batch 1 0 0");
    }
    program.kill();
}

TEST(VrxwatchTest, EndsWithAStatusThatSaysWhy)
{
    const struct
    {
        std::vector<std::string> arguments;
        int status;
    } cases[] = {
        {{"--version"}, 0}, {{"--help"}, 0},          {{}, 2},
        {{""}, 2},          {{"--nonsense", "/"}, 2}, {{"/", "--backend", "x"}, 2},
        {{"/nowhere"}, 1},  {{"/etc/passwd"}, 1},
    };
    for (const auto &usage : cases) {
        std::vector<std::string> command = {VRXWATCH};
        command.insert(command.end(), usage.arguments.begin(), usage.arguments.end());
        EXPECT_EQ(WEXITSTATUS(ChildProcess(command).finish()), usage.status)
            << testing::PrintToString(usage.arguments);
    }
}

} // namespace
