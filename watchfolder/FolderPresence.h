// SPDX-License-Identifier: MIT
#pragma once

namespace vantle {

/// What an event source knows of the folder that it watches.
enum class FolderPresence {
    present,    ///< at its path and watched
    overflowed, ///< the same, but events were lost: everything will be marked anew and scanned
    missing,    ///< not there, or not to be watched, at the last look; nobody was told
    gone,       ///< and that was told
};

/// What can happen to it.
enum class PresenceInput {
    doubt,    ///< an event says that something else may be at the path
    overflow, ///< events were lost
    flush,    ///< a client waits
    due,      ///< the wait that was asked for is over
    same,     ///< a look: the watched folder is at the path
    opened,   ///< a folder is at the path, and is watched from now on
    absent,   ///< nothing is at the path, or no folder
    refused,  ///< the folder can't be watched: rights, descriptors
};

/// What has to be done, and what has to be told.
struct PresenceStep
{
    enum Action {
        rest,
        look,        ///< compare what is at the path; when it is another folder, open it
        reopen,      ///< open what is at the path
        waitBriefly, ///< for a folder that is being replaced
        waitLong,    ///< for one that is away
        waitForQuiet ///< for whoever makes more events than can be read
    };
    enum Tell {
        nothing,
        rootChanged, ///< the folder went, came or is another one
        eventsLost,
    };

    FolderPresence next;
    Action action = rest;
    Tell tell = nothing;
};

/// What follows what.
PresenceStep afterInput(FolderPresence presence, PresenceInput input);

} // namespace vantle
