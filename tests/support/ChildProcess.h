// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace vantle::test {

/// A real child process that talks through its standard input and output, line by line.
class ChildProcess
{
public:
    /// With an empty working directory it runs in the parent's.
    explicit ChildProcess(const std::vector<std::string> &command, const std::string &workingDirectory = {});
    /// Ends the input and waits.
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    void send(const std::string &line);
    /// The next line of its output; empty at the end.
    std::string receive();
    /// Ends the input, waits for the end of the process, and returns its exit status.
    int finish();
    /// The exit status, once the process has ended. Waits for nothing.
    std::optional<int> status();
    /// Whether receive() would return at once.
    [[nodiscard]] bool hasOutput() const;
    /// Ends the process with SIGKILL and waits.
    void kill();
    pid_t id() const { return m_id; }

private:
    pid_t m_id = -1; // -1 once its end was waited for
    int m_status = 0;
    int m_input = -1;
    int m_output = -1;
};

/// Runs a shell script in a child process in a folder; throws when it fails.
void runScript(const std::string &folder, const std::string &script);

} // namespace vantle::test
