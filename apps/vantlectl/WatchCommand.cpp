// SPDX-License-Identifier: MIT
#include "apps/support/StopOnSignal.h"
#include "apps/vantlectl/StoreSession.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/document/DocumentWriter.h"

#include <optional>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

/// Prints a line for each change of the list, at once.
class ChangePrinter : public QObject
{
public:
    ChangePrinter(PresetsManager &manager, bool json, Output &out)
        : m_manager(manager), m_json(json), m_out(out)
    {
        connect(&manager, &PresetsManager::rowInserted, this, [this](int row) { print("added", row); });
        connect(&manager, &PresetsManager::rowAboutToBeRemoved, this,
                [this](int row) { print("removed", row); });
        connect(&manager, &PresetsManager::presetUpdated, this,
                [this](const auto &preset) { print("updated", m_manager.rowOf(preset)); });
    }

    /// Why printing ended, if it did.
    [[nodiscard]] const std::exception_ptr &failure() const { return m_failure; }

private:
    void print(const char *event, int row)
    try {
        const VantlePreset &preset = *m_manager.presets()[row];
        if (m_json)
            m_out.bytes(document::encode(document::Format::compact, [&](document::DocumentWriter &writer) {
                writer.beginObject();
                writer.string("event", QString::fromLatin1(event));
                writer.string("name", preset.name());
                writer.string("type", displayName(preset.type()));
                writer.endObject();
            }));
        else
            m_out.bytes((QString::fromLatin1(event) + u' ' + escapedControls(preset.name())).toUtf8());
        m_out.line();
        m_out.flush();
    } catch (const std::exception &) {
        m_failure = std::current_exception();
        QCoreApplication::quit();
    }

    PresetsManager &m_manager;
    bool m_json;
    Output &m_out;
    std::exception_ptr m_failure;
};

ExitCode watch(const StoreOptions &options, Output &out)
{
    bool isStopped = false;
    const StopOnSignal stop([&isStopped] { // before the store starts its threads
        isStopped = true;
        QCoreApplication::exit(); // quit() would not end the loop in which the store is waited for
    });
    std::optional<StoreSession> session;
    try {
        session.emplace(options);
    } catch (const Refusal &) {
        if (isStopped)
            return ExitCode::good;
        throw;
    }
    const ChangePrinter printer(session->manager(), options.json, out);
    out.line(options.json ? u"{\"event\":\"watching\"}"_s : u"watching"_s);
    out.flush();
    if (!isStopped)
        QCoreApplication::exec();
    if (printer.failure())
        std::rethrow_exception(printer.failure());
    return ExitCode::good;
}

} // namespace

void addWatchCommand(CLI::App &app, Command &chosen)
{
    CLI::App *const command =
        app.add_subcommand("watch", "Print a line per change of the list, as it happens");
    const auto options = std::make_shared<StoreOptions>();
    options->addTo(*command);
    command->callback([options, &chosen] {
        chosen = [options](Output &out) { return guarded([&] { return watch(*options, out); }); };
    });
}

} // namespace vantle::ctl
