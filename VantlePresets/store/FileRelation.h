// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QStringList>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

namespace vantle {

class PresetFile;

/// How a listed preset stands to its file.
enum class SaveState : std::uint8_t {
    settled,       ///< nothing is under way, and nothing is owed to the file
    saving,        ///< saves are under way
    renaming,      ///< the same, and the one that succeeds takes the file of the earlier name away
    savingBlind,   ///< saving, and something was heard of the file that may be older or newer than the saves
    renamingBlind, ///< the same for renaming
    saveFailed,    ///< nothing is under way; the last save failed
    renameFailed,  ///< the same, and the file still has its earlier name
};

/// What happens to a preset and its file.
enum class SaveEvent : std::uint8_t {
    save,       ///< a save begins
    rename,     ///< a save under a new name begins
    heard,      ///< others changed or removed the file
    savedOne,   ///< a save has succeeded, others are under way
    failedOne,  ///< a save has failed or was refused, others are under way
    skippedOne, ///< a save was skipped, since others changed or removed the file; more are under way
    saved,      ///< the last save that was under way has succeeded
    failed,     ///< ... has failed
    refused,    ///< ... was refused, since a file of the name is somebody else's
    skipped,    ///< ... was skipped, since others changed or removed the file
};

/// What is to be done then.
enum class SaveDuty : std::uint8_t {
    none,
    believe,         ///< apply what was heard
    reread,          ///< read the file: what is in it now counts
    resolveConflict, ///< rename the preset and save it
};

struct SaveStep
{
    SaveState next;
    SaveDuty duty;
};

/// The transitions. Pure; every event can come in every state.
[[nodiscard]] SaveStep saveStep(SaveState state, SaveEvent event);

/// The name that somebody asked for, from which others are made when it is taken.
struct WantedName
{
    QString text;
    bool isOfCopy = false; ///< the text is the name of the preset that was duplicated
};

/// One listed preset's relation to its file: the state, and what the states are about. Main thread only, but
/// for the file, which is shared with the file tasks.
class FileRelation
{
public:
    [[nodiscard]] SaveState state() const { return m_state; }
    [[nodiscard]] bool isUnderWay() const { return m_savesUnderWay > 0; }
    [[nodiscard]] bool isRenameOwed() const
    {
        return m_state == SaveState::renaming || m_state == SaveState::renamingBlind ||
               m_state == SaveState::renameFailed;
    }

    enum class Outcome { written, skipped, refused, failed };

    void begin(bool isRename);
    [[nodiscard]] SaveDuty end(Outcome outcome);
    [[nodiscard]] SaveDuty hear();

    /// Of the document that was last loaded or given to a save; nothing before the first and after a failure.
    std::optional<std::size_t> documentHash;
    WantedName wanted;
    /// Since the last save that was written, the names whose files turned out to be somebody else's.
    QStringList refusedNames;
    /// Whose permissions a file that has yet to be made gets; "" for the usual ones.
    std::filesystem::path like;
    std::shared_ptr<PresetFile> file = makeFile();

private:
    static std::shared_ptr<PresetFile> makeFile();
    SaveDuty take(SaveEvent event);

    SaveState m_state = SaveState::settled;
    int m_savesUnderWay = 0;
};

} // namespace vantle
