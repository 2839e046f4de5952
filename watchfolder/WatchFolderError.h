// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace vantle {

/// Why watching could not start.
struct WatchFolderError
{
    enum Code {
        FolderNotReachable = 1001,
        FolderIsFile = 1002,
        NoEventStream = 1003,
    };

    QString domain = QStringLiteral("WatchFolderError");
    int code = 0;
    QString description;
    /// What the system said, for instance "No space left on device" when the user is out of watches; may be
    /// empty.
    QString reason;
};

} // namespace vantle
