// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QString>

namespace vantle::ctl::obs {

/// What proves a password to obs-websocket 5. Salt and challenge are taken as the base64 texts that came.
[[nodiscard]] QString authenticationAnswer(const QString &password, const QString &salt,
                                           const QString &challenge);

/// What a close code of obs-websocket 5 means for the user; the server's own words for any other.
[[nodiscard]] QString closeReason(int code, const QString &serverText);

} // namespace vantle::ctl::obs
