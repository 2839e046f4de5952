// SPDX-License-Identifier: MIT
#include "tests/support/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace vantle::test {

ChildProcess::ChildProcess(const std::vector<std::string> &command, const std::string &workingDirectory)
{
    int input[2];
    int output[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipes");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    if (!workingDirectory.empty())
        posix_spawn_file_actions_addchdir_np(&actions, workingDirectory.c_str());
    std::vector<char *> arguments;
    for (const std::string &argument : command)
        arguments.push_back(const_cast<char *>(argument.c_str()));
    arguments.push_back(nullptr);
    const int failed = posix_spawnp(&m_id, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(input[0]);
    close(output[1]);
    m_input = input[1];
    m_output = output[0];
    if (failed != 0)
        throw std::runtime_error("can't run " + command[0]);
}

ChildProcess::~ChildProcess()
{
    finish();
    close(m_output);
}

void ChildProcess::send(const std::string &line)
{
    const std::string text = line + '\n';
    if (write(m_input, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw std::runtime_error("the child does not listen");
}

std::string ChildProcess::receive()
{
    std::string line;
    char next = 0;
    while (read(m_output, &next, 1) == 1 && next != '\n')
        line += next;
    return line;
}

int ChildProcess::finish()
{
    if (m_input >= 0)
        close(std::exchange(m_input, -1));
    if (m_id > 0 && waitpid(std::exchange(m_id, -1), &m_status, 0) < 0)
        throw std::runtime_error("waitpid failed");
    return m_status;
}

std::optional<int> ChildProcess::status()
{
    const pid_t ended = m_id > 0 ? waitpid(m_id, &m_status, WNOHANG) : m_id;
    if (ended == 0)
        return std::nullopt;
    if (ended < 0 && m_id > 0)
        throw std::runtime_error("waitpid failed");
    m_id = -1;
    return m_status;
}

bool ChildProcess::hasOutput() const
{
    pollfd output{m_output, POLLIN, 0};
    return poll(&output, 1, 0) == 1;
}

void ChildProcess::kill()
{
    if (m_id > 0)
        ::kill(m_id, SIGKILL);
    finish();
}

void runScript(const std::string &folder, const std::string &script)
{
    if (ChildProcess({"/bin/sh", "-ec", script}, folder).finish() != 0)
        throw std::runtime_error("failed: " + script);
}

} // namespace vantle::test
