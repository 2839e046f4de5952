// SPDX-License-Identifier: MIT
#include "apps/support/StopOnSignal.h"
#include "apps/vantlectl/StoreSession.h"
#include "apps/vantlectl/serve/Server.h"

#include "VantlePresets/core/Log.h"

#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

/// Nothing but frames may go to standard output, and nobody else may take from standard input: the numbers
/// lead elsewhere from here on.
int movedAway(int stream, int replacement)
{
    const int moved = ::fcntl(stream, F_DUPFD_CLOEXEC, 3);
    if (moved < 0 || replacement < 0 || ::dup2(replacement, stream) < 0)
        throw std::system_error(errno, std::generic_category(), "can't take over the standard streams");
    return moved;
}

/// A host that does not read what is complained of must not hold up the store: the line is lost then.
void tellIfRead(const QString &line)
{
    pollfd asked{.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
    if (::poll(&asked, 1, 0) > 0)
        tellLogLine(line.left(512)); // less than a pipe takes at once
}

ExitCode serve(const StoreOptions &options)
{
    const QString directory = options.directory();
    requireDirectory(directory); // the folder in it is made, since presets can be added
    const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    const int input = movedAway(STDIN_FILENO, null);
    const int output = movedAway(STDOUT_FILENO, STDERR_FILENO);
    ::close(null);
    std::signal(SIGXFSZ, SIG_IGN); // a file that must not grow is a save that fails, and no end
    setLogSink(tellIfRead);

    Server *serving = nullptr;
    const StopOnSignal stop([&serving] { // before the store starts its threads
        if (serving)
            serving->stop();
    });
    Server server(directory, input, output);
    serving = &server;
    ExitCode code = ExitCode::good;
    QObject::connect(&server, &Server::finished, &server, [&code](const QString &complaint) {
        if (!complaint.isEmpty()) {
            tellIfRead(complaint);
            code = ExitCode::failed;
        }
        QCoreApplication::exit();
    });
    QCoreApplication::exec();
    serving = nullptr;
    return code;
}

} // namespace

void addServeCommand(CLI::App &app, Command &chosen)
{
    CLI::App *const command =
        app.add_subcommand("serve", "Serve the store to a program, by JSON-RPC on standard input and output");
    command->footer("For hosts in any language, which run it as a helper: messages of JSON-RPC 2.0 behind\n"
                    "Content-Length headers. It ends when its input does, once all is saved.");
    const auto options = std::make_shared<StoreOptions>();
    options->addDirectoryTo(*command);
    command->callback([options, &chosen] {
        chosen = [options](Output &) { return guarded([&] { return serve(*options); }); };
    });
}

} // namespace vantle::ctl
