// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/serve/Params.h"
#include "apps/vantlectl/serve/ServeError.h"

#include "VantlePresets/store/PresetsManager.h"

#include <filesystem>
#include <functional>

namespace vantle::ctl {

/// The store as requests use it. Every change is on disk, or undone, when the request has its answer. Main
/// thread only.
class ServedStore
{
public:
    explicit ServedStore(const QString &dataDirectory);

    [[nodiscard]] PresetsManager &manager() { return m_manager; }
    [[nodiscard]] const QString &dataDirectory() const { return m_dataDirectory; }

    /// Throws ServeError: notFound.
    [[nodiscard]] std::shared_ptr<VantlePreset> preset(const QString &name) const;
    /// Where the preset's file is.
    [[nodiscard]] std::filesystem::path fileOf(const VantlePreset &preset) const;

    /// Equal exactly for presets whose documents are; of this process only.
    [[nodiscard]] QByteArray stampOf(const VantlePreset &preset) const;
    /// What `get` answers. Secrets are masked unless revealed.
    [[nodiscard]] ObjectText presentation(const VantlePreset &preset, bool reveal) const;
    /// Throws ServeError, a conflict, when the stamp is another than the preset's.
    void requireStamp(const VantlePreset &preset, const std::optional<QString> &stamp, bool reveal) const;
    /// Throws a conflict over the preset of that name as it is now, if there is one.
    [[noreturn]] void throwConflict(const QString &name, bool reveal) const;

    /// Waits for the files, and for what follows from their outcomes.
    void settle();
    /// Why the last save of the preset failed; nothing when it did not.
    [[nodiscard]] std::optional<QString> saveFailure(const VantlePreset &preset) const;

    /// Told of presets that a request has changed in place, which the manager's signals leave out.
    std::function<void(const std::shared_ptr<VantlePreset> &preset)> edited = [](const auto &) {};

private:
    const QString m_dataDirectory;
    const QByteArray m_salt;
    PresetsManager m_manager;
};

} // namespace vantle::ctl
