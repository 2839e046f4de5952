// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/model/Assignment.h"

#include <QtCore/QByteArrayList>
#include <QtCore/QHash>

namespace vantle::ctl {

/// The renditions and tracks that assignments name by their position, as they were when the user looked.
class Positions
{
public:
    explicit Positions(const VantlePreset &preset);

    /// Refuses, by AssignmentError, an assignment whose position is another rendition's or track's in the
    /// preset as it is now.
    void require(const VantlePreset &preset, const QList<Assignment> &assignments) const;

private:
    const QHash<QString, QByteArrayList> m_lists;
};

} // namespace vantle::ctl
