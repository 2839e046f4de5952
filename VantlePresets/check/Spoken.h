// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QByteArrayView>
#include <QtCore/QString>

namespace vantle::check {

/// What a server speaks that begins so, as "HTTP"; "" when it can't be told.
[[nodiscard]] QString languageOf(QByteArrayView beginning);

/// "the server speaks HTTP, not RTMP", without the first name when it can't be told, and otherwise when both
/// are one.
[[nodiscard]] QString speaksOther(QByteArrayView beginning, QLatin1StringView wanted);

} // namespace vantle::check
