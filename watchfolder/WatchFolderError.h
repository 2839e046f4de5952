// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QString>

namespace vantle {

/// Why watching could not start.
struct WatchFolderError
{
    /// What kept watching from starting.
    enum Code {
        FolderNotReachable = 1001,
        FolderIsFile = 1002,
        NoEventStream = 1003,
    };

    /// The same for all errors of watchers.
    QString domain = QStringLiteral("WatchFolderError");
    /// A Code; 0 while there is no error.
    int code = 0;
    /// For people.
    QString description;
    /// What the system said, for instance "No space left on device" when the user is out of watches; may be
    /// empty.
    QString reason;
};

} // namespace vantle
