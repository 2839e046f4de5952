// SPDX-License-Identifier: MIT
#include "apps/support/StopOnSignal.h"
#include "apps/vantlectl/AdviceLines.h"
#include "apps/vantlectl/Assignments.h"
#include "apps/vantlectl/NamedPreset.h"
#include "apps/vantlectl/TextValue.h"
#include "apps/vantlectl/obs/Access.h"
#include "apps/vantlectl/obs/Application.h"
#include "apps/vantlectl/obs/Stream.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/document/DocumentWriter.h"

#include <QtCore/QRegularExpression>
#include <QtNetwork/QHostAddress>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

constexpr auto kPasswordVariable = "OBS_WEBSOCKET_PASSWORD";

struct Options : StoreOptions
{
    std::string preset;
    std::vector<std::string> assignments;
    std::string host = "127.0.0.1";
    std::optional<quint16> port;
    std::string password; ///< @FILE or @-
    bool allowRemote = false;
    bool partly = false;
    bool start = false;
    bool stop = false;
    bool status = false;
};

/// Where OBS is and what proves that it may be told.
struct Access
{
    obs::Endpoint endpoint;
    QString password;
};

QString passwordOf(const Options &options, const std::optional<obs::ServerSettings> &own)
{
    if (!options.password.empty()) {
        try {
            return textValue(QString::fromStdString(options.password));
        } catch (const std::exception &error) {
            throw Refusal("--password: "_L1 + QString::fromUtf8(error.what()));
        }
    }
    if (qEnvironmentVariableIsSet(kPasswordVariable))
        return qEnvironmentVariable(kPasswordVariable);
    return own ? own->password : QString();
}

/// What this user's OBS is set to is for the OBS on this machine alone.
Access accessOf(const Options &options)
{
    const QString host = QString::fromStdString(options.host);
    const bool isLocal = obs::isLoopback(host);
    if (!isLocal && !options.allowRemote)
        throw Refusal("--host: "_L1 + escapedControls(host) +
                      " is not this machine; stream key and password would go there for all to read. "
                      "--allow-remote sends them all the same"_L1);
    const auto own = isLocal ? obs::ownServerSettings() : std::nullopt;
    const quint16 port = options.port.value_or(own ? own->port : obs::Endpoint().port);
    if (isLocal && !options.allowRemote && obs::isAnothersServer(port))
        throw Refusal(u"--port: another user listens on %1, who would learn stream key and password. "
                      "--allow-remote sends them all the same"_s.arg(port));
    return {{host, port}, passwordOf(options, own)};
}

void report(Output &out, const Options &options, const std::function<void(document::DocumentWriter &)> &write,
            const QString &text)
{
    if (!options.json) {
        out.line(text);
        return;
    }
    out.bytes(document::encode(document::Format::compact, [&](document::DocumentWriter &writer) {
        writer.beginObject();
        write(writer);
        writer.endObject();
    }));
    out.line();
}

/// Complains of what OBS can't carry. Whether the plan is to be applied.
bool isAccepted(const obs::Plan &plan, const Options &options)
{
    for (const QString &line : plan.refusals + plan.differences)
        complain(line);
    if (!plan.refusals.isEmpty())
        return false;
    if (!plan.differences.isEmpty() && !options.partly) {
        complain(u"nothing was changed; --partly applies the rest"_s);
        return false;
    }
    for (const QString &line : plan.notes)
        remark("note: "_L1 + line);
    return true;
}

ExitCode start(obs::Connection &connection, const obs::Plan &plan)
{
    if (plan.needsRestart)
        throw Refusal(u"not started: OBS has to be started again before it takes the audio format"_s);
    bool isInterrupted = false;
    const StopOnSignal stop([&] { isInterrupted = true; });
    obs::startStream(connection, isInterrupted);
    return ExitCode::good;
}

ExitCode applyPreset(const Options &options, Output &out)
{
    const auto parsed = parseAssignments(options.assignments, options.preset);
    if (!parsed)
        return ExitCode::usage;
    // What is typed is read while Ctrl-C ends the command.
    const QList<Assignment> assignments = withTextsRead(*parsed);
    const Access access = accessOf(options);
    if (options.preset == "-")
        static_cast<void>(namedPreset(options.preset, options)); // whose text is kept
    if (options.start)
        StopOnSignal::block(); // before there are threads; what comes is taken when the stream starts
    const auto preset = assignedPreset(options.preset, options, assignments);
    tellAdvice(*preset, fileOfNamedPreset(options.preset, options));
    obs::Connection connection(access.endpoint, access.password);
    const obs::RunningObs running = obs::lookAt(
        connection, obs::isLoopback(access.endpoint.host) ? obs::serverRun(access.endpoint.port) : QString());
    const obs::Plan plan = obs::planFor(*preset, running.host);
    connection.addSecrets(plan.secrets);
    obs::refuseWhileActive(connection);
    if (!isAccepted(plan, options))
        return ExitCode::failed;
    const bool hasChanged = obs::apply(connection, running, plan, preset->name());
    if (plan.needsRestart)
        complain(u"OBS has to be started again before it takes the audio format"_s);
    const ExitCode code = options.start ? start(connection, plan) : ExitCode::good;
    report(
        out, options,
        [&](document::DocumentWriter &writer) {
            writer.string("preset", preset->name());
            writer.string("profile", plan.profile);
            writer.boolean("changed", hasChanged);
            writer.boolean("onAir", options.start);
        },
        escapedControls(preset->name()) + (options.start ? " is on air"_L1
                                           : hasChanged  ? " is applied, nothing is on air"_L1
                                                         : " was applied before, nothing was changed"_L1));
    return code;
}

ExitCode stop(obs::Connection &connection, const Options &options, Output &out)
{
    const bool hasStopped = obs::stopStream(connection);
    report(
        out, options, [&](document::DocumentWriter &writer) { writer.boolean("stopped", hasStopped); },
        hasStopped ? u"the stream was stopped"_s : u"nothing was on air"_s);
    return ExitCode::good;
}

ExitCode status(obs::Connection &connection, const Options &options, Output &out)
{
    const QString preset = obs::parameter(connection, obs::kOwnCategory, obs::kPresetParameter);
    const obs::StreamStatus now = obs::streamStatus(connection);
    const qint64 bitRate = now.isActive ? obs::measuredBitRate(connection) : 0;
    const QString state = now.isReconnecting ? u"reconnecting"_s : now.isActive ? u"on air"_s : u"off air"_s;
    report(
        out, options,
        [&](document::DocumentWriter &writer) {
            writer.string("preset", preset);
            writer.string("state", state);
            writer.integer("bitRate", bitRate);
            writer.integer("seconds", now.duration / 1000);
            writer.integer("droppedFrames", now.droppedFrames);
            writer.integer("frames", now.frames);
        },
        u"%1  %2  %3 kbit/s  %4 s  %5 of %6 frames dropped"_s
            .arg(preset.isEmpty() ? u"(a profile of OBS's user)"_s : escapedControls(preset), state)
            .arg(bitRate)
            .arg(now.duration / 1000)
            .arg(now.droppedFrames)
            .arg(now.frames));
    return ExitCode::good;
}

ExitCode tellOrStop(const Options &options, Output &out)
{
    const Access access = accessOf(options);
    obs::Connection connection(access.endpoint, access.password);
    return options.stop ? stop(connection, options, out) : status(connection, options, out);
}

/// Whether it is a name or an address, without a port or other parts of a URL.
bool isHost(const QString &text)
{
    static const QRegularExpression name(u"\\A[^\\s/?#@:\\[\\]\\x00-\\x1f\\x7f]+\\z"_s);
    return name.match(text).hasMatch() || !QHostAddress(text).isNull();
}

/// What the parser can't say. Both the password and one assignment can't have all of standard input.
const char *misuse(const Options &options)
{
    if ((options.stop || options.status) == !options.preset.empty())
        return "give a preset, or one of --stop and --status";
    if (options.partly && options.preset.empty())
        return "--partly is for a preset that is applied; leave it out";
    if (options.host.empty())
        return "--host: the name is empty; leave it out for the OBS on this machine";
    if (!isHost(QString::fromStdString(options.host)))
        return "--host takes a name or an address alone, such as 192.0.2.7; the port is given with --port";
    if (!options.password.empty() && options.password.front() != '@')
        return "--password takes @FILE or @-: what stands on a command line can be read by others";
    const bool readsInput =
        options.preset == "-" || std::any_of(options.assignments.begin(), options.assignments.end(),
                                             [](const std::string &text) { return text.ends_with("=@-"); });
    if (options.password == "@-" && readsInput)
        return "standard input can be read for one thing only";
    return nullptr;
}

ExitCode obsCommand(const Options &options, Output &out)
{
    if (const char *reason = misuse(options)) {
        complain(QString::fromUtf8(reason));
        return ExitCode::usage;
    }
    try {
        return options.preset.empty() ? tellOrStop(options, out) : applyPreset(options, out);
    } catch (const obs::Error &error) {
        throw Refusal(error.text());
    }
}

} // namespace

void addObsCommand(CLI::App &app, Command &chosen)
{
    CLI::App *const command =
        app.add_subcommand("obs", "Apply a preset to the OBS that runs on this machine");
    command->footer(
        "OBS 28 or later, with the server of its menu Tools > WebSocket Server Settings switched on. The\n"
        "preset gets an OBS profile of its own; nothing goes on air without --start, and nothing is changed\n"
        "while OBS streams or records. Where OBS would send something else than the preset says, a line per\n"
        "field says so and ends the command with 1. The password of OBS's server is taken from --password,\n"
        "OBS_WEBSOCKET_PASSWORD, or this user's OBS configuration. Assignments are those of `set` and hold\n"
        "for this command only: give a stream key with streamKey=@- or streamKey=@FILE.");
    const auto options = std::make_shared<Options>();
    options->addTo(*command);
    command->add_option("PRESET", options->preset, kPresetArgumentHelp);
    command->add_option("FIELD=VALUE", options->assignments, "Changes for this command only");
    command->add_flag("--partly", options->partly, "Apply what OBS can carry, and leave the rest");
    CLI::Option *const start =
        command->add_flag("--start", options->start, "Go on air, and wait until it is so");
    CLI::Option *const stop = command->add_flag("--stop", options->stop, "Stop the stream");
    command->add_flag("--status", options->status, "Tell what is on air")->excludes(start)->excludes(stop);
    stop->excludes(start);
    command->add_option("--host", options->host, "Where OBS runs")->capture_default_str();
    command->add_option("--port", options->port, "Of OBS's server; by default what OBS is set to, or 4455")
        ->check(CLI::Range(1, 65535));
    command->add_option("--password", options->password, "@FILE or @-: the password of OBS's server");
    command->add_flag("--allow-remote", options->allowRemote,
                      "Let OBS be another machine's or user's, who learns the secrets");
    command->callback([options, &chosen] {
        chosen = [options](Output &out) { return guarded([&] { return obsCommand(*options, out); }); };
    });
}

} // namespace vantle::ctl
