// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace vantle {

/// Why an item is looked at.
enum class LookCause : std::uint8_t {
    look,           ///< a walk, a client, or an event of nobody knows whom
    foreign,        ///< an event of another process
    own,            ///< an event of this process and nobody else
    ownRemoval,     ///< this process removed it or moved it away
    ownReplacement, ///< this process did that, and made it or moved it here; nobody knows which came last
};

/// What the inventory knows of an item.
enum class Knowledge : std::uint8_t {
    nothing,
    told,       ///< the delegate knows it as it is recorded
    untold,     ///< an event said that this process had made it, which nobody was told of
    ownByEvent, ///< known to the delegate; an event said that this process has changed it since, and a
                ///< foreign change may hide behind that
    ownExact,   ///< this process has put there exactly what is recorded, and said so
};

/// What a look at the path found.
enum class OnDisk : std::uint8_t {
    unreadable, ///< an error that leaves open whether something is there
    missing,
    same,  ///< as recorded
    other, ///< not recorded, or not as recorded
};

enum class Report : std::uint8_t { none, added, updated, missing };

/// What a look means: what the delegate is told, and what is recorded from now on. A missing item stays
/// recorded until it has been reported.
struct LookMeaning
{
    Report report;
    Knowledge record;
};

/// The rule by which looks become reports. Pure.
LookMeaning meaningOfLook(LookCause cause, Knowledge known, OnDisk found);

} // namespace vantle
