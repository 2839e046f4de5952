// SPDX-License-Identifier: MIT
#include "watchfolder/LookTable.h"

#include <array>
#include <optional>

namespace vantle {
namespace {

/// A set of enumerators, as a column of a row.
template <class... Enumerators>
constexpr unsigned of(Enumerators... enumerators)
{
    return ((1U << static_cast<unsigned>(enumerators)) | ...);
}

using enum LookCause;
using enum Knowledge;
using enum OnDisk;

constexpr unsigned kAny = ~0U;
constexpr unsigned kNotOwn = of(look, foreign);
constexpr unsigned kOwn = of(own, ownRemoval, ownReplacement);
constexpr unsigned kRecorded = of(told, untold, ownByEvent, ownExact);
constexpr unsigned kThere = of(same, other);
constexpr std::nullopt_t kAsBefore = std::nullopt;

struct Row
{
    unsigned causes;
    unsigned known;
    unsigned found;
    Report report;
    std::optional<Knowledge> record;
};

// The first row that fits counts.
constexpr std::array kRows = {
    // Gone, or nobody knows.
    Row{kAny, kAny, of(unreadable), Report::none, kAsBefore},
    Row{kAny, of(nothing), of(OnDisk::missing), Report::none, kAsBefore},
    // Removed by this process. Not for ownExact: whoever announces its changes would have announced the
    // removal,
    // so it was somebody else's.
    Row{of(ownRemoval, ownReplacement), of(told, untold, ownByEvent), of(OnDisk::missing), Report::none,
        nothing},
    Row{kAny, kRecorded, of(OnDisk::missing), Report::missing, kAsBefore},
    // New.
    Row{kNotOwn, of(nothing), kThere, Report::added, told},
    Row{of(own, ownReplacement), of(nothing), kThere, Report::none, untold},
    // Removed by this process and made anew by somebody else since: that one's event is on its way.
    Row{of(ownRemoval), of(nothing), kThere, Report::none, kAsBefore},
    // As recorded. A foreign event may tell of a change that was taken for an own one.
    Row{of(look), kRecorded, of(same), Report::none, kAsBefore},
    Row{of(foreign), of(told), of(same), Report::none, kAsBefore},
    Row{of(foreign), of(ownByEvent, ownExact), of(same), Report::updated, told},
    // Not as recorded, or never told: news, unless this process did it.
    Row{kNotOwn, of(untold), kThere, Report::added, told},
    Row{kNotOwn, of(told, ownByEvent, ownExact), of(other), Report::updated, told},
    Row{kOwn, of(untold), kThere, Report::none, kAsBefore},
    Row{kOwn, of(ownExact), of(same), Report::none, kAsBefore},
    Row{kOwn, of(told, ownByEvent, ownExact), kThere, Report::none, ownByEvent},
};

} // namespace

LookMeaning meaningOfLook(LookCause cause, Knowledge known, OnDisk found)
{
    for (const Row &row : kRows) {
        if ((row.causes & of(cause)) != 0 && (row.known & of(known)) != 0 && (row.found & of(found)) != 0)
            return {row.report, row.record.value_or(known)};
    }
    return {Report::none, known};
}

} // namespace vantle
