// SPDX-License-Identifier: MIT
#include "watchfolder/FolderPresence.h"

#include <array>

namespace vantle {

namespace {

struct Row
{
    FolderPresence presence;
    PresenceInput input;
    PresenceStep step;
};

using enum FolderPresence;
using Input = PresenceInput;
using Step = PresenceStep;

// What has no row changes nothing: a wait that is over too late, a doubt about what is looked for anyway.
constexpr std::array kRows = {
    Row{present, Input::doubt, {present, Step::look}},
    Row{present, Input::overflow, {overflowed, Step::waitForQuiet}},
    Row{present, Input::opened, {present, Step::rest, Step::rootChanged}},
    Row{present, Input::absent, {missing, Step::waitBriefly}},
    Row{present, Input::refused, {missing, Step::waitBriefly}},

    Row{overflowed, Input::doubt, {overflowed, Step::look}},
    Row{overflowed, Input::flush, {overflowed, Step::reopen}},
    Row{overflowed, Input::due, {overflowed, Step::reopen}},
    Row{overflowed, Input::opened, {present, Step::rest, Step::eventsLost}},
    Row{overflowed, Input::absent, {missing, Step::waitBriefly}},
    // The old queue goes on; what it lost is found all the same.
    Row{overflowed, Input::refused, {missing, Step::waitBriefly, Step::eventsLost}},

    Row{missing, Input::flush, {missing, Step::reopen}},
    Row{missing, Input::due, {missing, Step::reopen}},
    Row{missing, Input::opened, {present, Step::rest, Step::rootChanged}},
    Row{missing, Input::absent, {gone, Step::waitLong, Step::rootChanged}},
    Row{missing, Input::refused, {gone, Step::waitLong, Step::rootChanged}},

    Row{gone, Input::flush, {gone, Step::reopen}},
    Row{gone, Input::due, {gone, Step::reopen}},
    Row{gone, Input::opened, {present, Step::rest, Step::rootChanged}},
    // Told at each look: the folder may have been back for a moment in between, and some of it may have been
    // met.
    Row{gone, Input::absent, {gone, Step::waitLong, Step::rootChanged}},
    Row{gone, Input::refused, {gone, Step::waitLong}},
};

} // namespace

PresenceStep afterInput(FolderPresence presence, PresenceInput input)
{
    for (const Row &row : kRows) {
        if (row.presence == presence && row.input == input)
            return row.step;
    }
    return {presence};
}

} // namespace vantle
