// SPDX-License-Identifier: MIT
#include "apps/vantlectl/serve/Notifications.h"

#include <chrono>
#include <utility>

namespace vantle::ctl {
namespace {

constexpr std::chrono::milliseconds kBurst{50};

const char *textOf(PresetsFailure::Operation operation)
{
    switch (operation) {
    case PresetsFailure::Operation::load:
        return "load";
    case PresetsFailure::Operation::save:
        return "save";
    case PresetsFailure::Operation::deletion:
        break;
    }
    return "deletion";
}

} // namespace

Notifications::Notifications(PresetsManager &manager, std::function<bool()> canSend, Send send)
    : m_manager(manager), m_canSend(std::move(canSend)), m_send(std::move(send))
{
    m_burst.setSingleShot(true);
    m_burst.setInterval(kBurst);
    connect(&m_burst, &QTimer::timeout, this, &Notifications::flush);
    connect(&manager, &PresetsManager::didLoad, this, [this] {
        remember();
        m_isLoadDue = true;
        flushNow();
    });
    connect(&manager, &PresetsManager::presetsChanged, this, [this] {
        m_isListChanged = true;
        schedule();
    });
    connect(&manager, &PresetsManager::presetUpdated, this, &Notifications::noteUpdated);
    connect(&manager, &PresetsManager::failed, this,
            [this](const auto &failure) { noteFailure(failure, false); });
    connect(&manager, &PresetsManager::recovered, this,
            [this](const auto &failure) { noteFailure(failure, true); });
}

void Notifications::noteUpdated(const std::shared_ptr<VantlePreset> &preset)
{
    m_updated.insert(preset);
    schedule();
}

void Notifications::noteFailure(const PresetsFailure &failure, bool hasEnded)
{
    m_failures.insert(QString::fromLatin1(textOf(failure.operation)) + failure.path, {failure, hasEnded});
    schedule();
}

void Notifications::schedule()
{
    if (!m_burst.isActive())
        m_burst.start();
}

void Notifications::flush()
{
    if (!m_burst.isActive())
        flushNow();
}

void Notifications::flushNow()
{
    if (!m_manager.isLoaded() || !m_canSend())
        return;
    m_burst.stop();
    if (std::exchange(m_isLoadDue, false))
        m_send("loaded", ObjectText().number("presets", m_told.size()));
    if (std::exchange(m_isListChanged, false))
        sendListChanges();
    sendUpdates();
    sendFailures();
}

/// The client is about to be told to read the whole list.
void Notifications::remember()
{
    m_told.clear();
    m_updated.clear();
    m_isListChanged = false;
    for (const auto &preset : m_manager.presets())
        m_told.insert(preset.get(), {preset, preset->name()});
}

void Notifications::sendListChanges()
{
    auto gone = std::exchange(m_told, {});
    QList<std::pair<std::shared_ptr<VantlePreset>, QString>> renamed;
    PresetsList added;
    for (const auto &preset : m_manager.presets()) {
        const auto told = gone.find(preset.get());
        if (told == gone.end())
            added.append(preset);
        else if (told->name != preset->name())
            renamed.append({preset, told->name});
        if (told != gone.end())
            gone.erase(told);
        m_told.insert(preset.get(), {preset, preset->name()});
    }
    // In this order no name is used by two at any time, unless they have exchanged theirs.
    QHash<QString, bool> isReplaced;
    for (const auto &preset : std::as_const(added))
        isReplaced.insert(preset->name(), false);
    for (const Told &told : std::as_const(gone)) {
        m_updated.remove(told.preset);
        if (const auto found = isReplaced.find(told.name); found != isReplaced.end())
            *found = true; // by a file of another class, say
        else
            sendChange("removed", told.name, *told.preset);
    }
    for (const auto &[preset, from] : std::as_const(renamed))
        sendChange("renamed", preset->name(), *preset, from);
    for (const auto &preset : std::as_const(added)) {
        m_updated.remove(preset); // it is new to the client as a whole
        sendChange(isReplaced.value(preset->name()) ? "updated" : "added", preset->name(), *preset);
    }
}

void Notifications::sendUpdates()
{
    for (const auto &preset : std::exchange(m_updated, {})) {
        if (m_told.contains(preset.get()))
            sendChange("updated", preset->name(), *preset);
    }
}

void Notifications::sendFailures()
{
    for (const FailureState &state : std::exchange(m_failures, {})) {
        const PresetsFailure &failure = state.failure;
        ObjectText params;
        params.text("operation", QString::fromLatin1(textOf(failure.operation)))
            .text("name", failure.name)
            .text("path", failure.path);
        if (!state.hasEnded)
            params.text("reason", failure.reason);
        m_send(state.hasEnded ? "recovered" : "failed", params);
    }
}

void Notifications::sendChange(const char *what, const QString &name, const VantlePreset &preset,
                               const QString &from)
{
    ObjectText params;
    params.text("name", name)
        .text("type", displayName(preset.type()))
        .text("what", QString::fromLatin1(what));
    if (!from.isNull())
        params.text("from", from);
    m_send("changed", params);
}

} // namespace vantle::ctl
