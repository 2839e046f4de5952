// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/Export.h"

#include <memory>
#include <string>

namespace vantle {

/// A change that this process makes to one item of a watched folder, as a bracket around it: made before the
/// folder is changed (VRXWatchFolder::beginOwnChange), and destroyed when it has been. Nothing is locked in
/// between. The watcher leaves the item alone meanwhile; afterwards what is there is this process's own and
/// not reported when it is exactly what the bracket was told, and anybody else's, and reported, when it is
/// not. A bracket that was told nothing has changed nothing.
///
/// Brackets may overlap, be used on any thread, and outlive the watcher. Each is used by one thread, and
/// belongs to the start of the watcher in which it began: to a later one the change is anybody's.
class VANTLE_WATCHFOLDER_EXPORT OwnChange
{
public:
    /// Around nothing.
    OwnChange();
    /// The moved one is around nothing.
    OwnChange(OwnChange &&other) noexcept;
    OwnChange &operator=(OwnChange &&) = delete;
    ~OwnChange();

    /// The file that the descriptor is open on (O_PATH is enough) has been put at the path. To be called
    /// after it has got its name, which changes its change time.
    void hasPut(int descriptor);
    /// The item is gone: removed, or moved away.
    void hasRemoved();
    /// Whatever is at the path now is this process's doing. For changes that can't say more: what another
    /// process did in the same moment passes for theirs.
    void hasMadeWhatIsThere();

private:
    friend class VRXWatchFolder;
    struct State;
    explicit OwnChange(std::unique_ptr<State> state);

    std::unique_ptr<State> m_state;
};

} // namespace vantle
