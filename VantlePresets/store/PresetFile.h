// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/document/FileAccess.h"

#include <QtCore/QString>

#include <chrono>
#include <mutex>
#include <optional>

namespace vantle {

/// What the store knows of a preset's file.
struct KnownFile
{
    using Time = std::chrono::steady_clock::time_point;

    QString name; ///< without the extension; "" for none
    FileStamp stamp;
    std::optional<std::size_t> documentHash; ///< of what is in it, when that is known
    Time since;                              ///< what was read from the file before then may be older
};

/// The file that a listed preset stands for, as it was when the preset was last loaded from it or saved to
/// it. A preset that has never been in a file has none. Shared by the list and the file tasks. Thread-safe.
class PresetFile
{
public:
    void set(KnownFile file)
    {
        const std::lock_guard lock(m_mutex);
        m_file = std::move(file);
    }
    [[nodiscard]] KnownFile get() const
    {
        const std::lock_guard lock(m_mutex);
        return m_file;
    }
    [[nodiscard]] QString name() const { return get().name; }

private:
    mutable std::mutex m_mutex;
    KnownFile m_file;
};

} // namespace vantle
