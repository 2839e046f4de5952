// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QByteArray>

#include <cerrno>
#include <string>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vantle::test {

/// How a child process ended and what it said.
struct Finished
{
    int exitCode = -1; ///< -1 when a signal ended it
    QByteArray output;
    QByteArray errors;
};

/// Runs a program with arguments of any bytes and waits for its end. Standard output goes to the caller's
/// descriptor when there is one.
inline Finished runProcess(std::vector<std::string> arguments, int ownOutput = -1)
{
    const auto temporaryFile = [] {
        std::string name = "/tmp/vantle-test-XXXXXX";
        const int file = ::mkostemp(name.data(), O_CLOEXEC);
        ::unlink(name.c_str());
        return file;
    };
    const auto contentOf = [](int file) {
        QByteArray content(static_cast<qsizetype>(::lseek(file, 0, SEEK_END)), '\0');
        content.truncate(::pread(file, content.data(), static_cast<std::size_t>(content.size()), 0));
        ::close(file);
        return content;
    };

    const int output = ownOutput >= 0 ? ownOutput : temporaryFile();
    const int errors = temporaryFile();
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);

    std::vector<char *> raw;
    for (std::string &argument : arguments)
        raw.push_back(argument.data());
    raw.push_back(nullptr);
    pid_t child = 0;
    const int failure = ::posix_spawn(&child, raw[0], &actions, nullptr, raw.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (failure != 0)
        throw std::system_error(failure, std::generic_category(), arguments[0]);

    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    Finished result;
    if (WIFEXITED(status))
        result.exitCode = WEXITSTATUS(status);
    if (ownOutput < 0)
        result.output = contentOf(output);
    result.errors = contentOf(errors);
    return result;
}

/// As above, with standard output going to a file.
inline Finished runProcess(const std::vector<std::string> &arguments, const char *outputFile)
{
    const int output = ::open(outputFile, O_WRONLY | O_CLOEXEC);
    Finished result = runProcess(arguments, output);
    ::close(output);
    return result;
}

} // namespace vantle::test
