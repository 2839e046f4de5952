// SPDX-License-Identifier: MIT
#include "VantlePresets/store/FileRelation.h"

#include "VantlePresets/store/PresetFile.h"

#include <array>

namespace vantle {
namespace {

using enum SaveState;
using enum SaveDuty;

constexpr std::size_t kEvents = 10;

// A row for each state, in the order of the enumeration; a column for each event.
// clang-format off
constexpr std::array<std::array<SaveStep, kEvents>, 7> kSteps = {{
    // save                   rename                 heard                    savedOne               failedOne              skippedOne             saved              failed                  refused                           skipped
    {{{saving, none},        {renaming, none},      {settled, believe},      {settled, none},       {settled, none},       {settled, none},       {settled, none},   {saveFailed, none},     {saveFailed, resolveConflict},    {settled, reread}}},
    {{{saving, none},        {renaming, none},      {savingBlind, none},     {saving, none},        {saving, none},        {savingBlind, none},   {settled, none},   {saveFailed, none},     {saving, resolveConflict},        {settled, reread}}},
    {{{renaming, none},      {renaming, none},      {renamingBlind, none},   {renaming, none},      {renaming, none},      {renamingBlind, none}, {settled, none},   {renameFailed, none},   {renaming, resolveConflict},      {settled, reread}}},
    {{{savingBlind, none},   {renamingBlind, none}, {savingBlind, none},     {savingBlind, none},   {savingBlind, none},   {savingBlind, none},   {settled, reread}, {saveFailed, reread},   {savingBlind, resolveConflict},   {settled, reread}}},
    {{{renamingBlind, none}, {renamingBlind, none}, {renamingBlind, none},   {renamingBlind, none}, {renamingBlind, none}, {renamingBlind, none}, {settled, reread}, {renameFailed, reread}, {renamingBlind, resolveConflict}, {settled, reread}}},
    {{{saving, none},        {renaming, none},      {saveFailed, believe},   {saveFailed, none},    {saveFailed, none},    {saveFailed, none},    {settled, none},   {saveFailed, none},     {saveFailed, resolveConflict},    {settled, reread}}},
    {{{renaming, none},      {renaming, none},      {renameFailed, believe}, {renameFailed, none},  {renameFailed, none},  {renameFailed, none},  {settled, none},   {renameFailed, none},   {renameFailed, resolveConflict},  {settled, reread}}},
}};
// clang-format on

} // namespace

SaveStep saveStep(SaveState state, SaveEvent event)
{
    return kSteps[static_cast<std::size_t>(state)][static_cast<std::size_t>(event)];
}

void FileRelation::begin(bool isRename)
{
    ++m_savesUnderWay;
    take(isRename ? SaveEvent::rename : SaveEvent::save);
}

SaveDuty FileRelation::end(Outcome outcome)
{
    const bool isLast = --m_savesUnderWay == 0;
    switch (outcome) {
    case Outcome::written:
        return take(isLast ? SaveEvent::saved : SaveEvent::savedOne);
    case Outcome::skipped:
        return take(isLast ? SaveEvent::skipped : SaveEvent::skippedOne);
    case Outcome::refused:
        return take(isLast ? SaveEvent::refused : SaveEvent::failedOne);
    case Outcome::failed:
        break;
    }
    return take(isLast ? SaveEvent::failed : SaveEvent::failedOne);
}

SaveDuty FileRelation::hear()
{
    return take(SaveEvent::heard);
}

SaveDuty FileRelation::take(SaveEvent event)
{
    const SaveStep step = saveStep(m_state, event);
    m_state = step.next;
    return step.duty;
}

std::shared_ptr<PresetFile> FileRelation::makeFile()
{
    return std::make_shared<PresetFile>();
}

} // namespace vantle
