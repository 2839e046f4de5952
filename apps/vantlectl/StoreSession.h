// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/Command.h"

#include "VantlePresets/store/PresetsManager.h"

#include <memory>
#include <stdexcept>
#include <string>

namespace vantle::ctl {

/// What a command on the store refuses, as it is to be shown.
class Refusal : public std::runtime_error
{
public:
    explicit Refusal(const QString &text) : std::runtime_error(text.toStdString()) {}
};

/// The options that every command on the store has.
struct StoreOptions
{
    std::string dataDirectory; ///< "" when none was given
    bool json = false;
    bool makesFolder = false; ///< for adding: a presets folder that is not there is made

    void addTo(CLI::App &command);
    /// Only --data-dir, for a command that prints no presets.
    void addDirectoryTo(CLI::App &command);
    /// The given one, else that of VANTLE_DATA_DIR, else the machine-wide one.
    [[nodiscard]] QString directory() const;
};

/// Refuses a data directory that is not there, since the store would make it. Throws Refusal.
void requireDirectory(const QString &dataDirectory);

/// The store of one command: opens it, waits until the folder has been read, and tells whether everything
/// that was asked for has reached the disk. The store's log goes to standard error.
class StoreSession
{
public:
    /// Throws Refusal when the folder can't be used, or is not there and not to be made.
    explicit StoreSession(const StoreOptions &options);
    ~StoreSession();
    StoreSession(const StoreSession &) = delete;
    StoreSession &operator=(const StoreSession &) = delete;

    [[nodiscard]] PresetsManager &manager() { return *m_manager; }

    /// Throws Refusal when no preset has the name.
    [[nodiscard]] std::shared_ptr<VantlePreset> preset(const std::string &argument) const;

    /// Waits for the files; failed when a preset is not on disk or a file could not be deleted.
    [[nodiscard]] ExitCode finish();

private:
    std::unique_ptr<PresetsManager> m_manager;
};

/// Runs a command's work and turns what it refuses into a complaint.
[[nodiscard]] ExitCode guarded(const std::function<ExitCode()> &work);

/// A preset's line in listings; with json the object of presetAsJson(), secrets masked.
void printPreset(Output &out, const VantlePreset &preset, bool json);
/// The same for a preset that the command has changed: nothing with --quiet.
void reportPreset(Output &out, const VantlePreset &preset, bool json);

} // namespace vantle::ctl
