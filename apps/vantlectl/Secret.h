// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QString>

namespace vantle::ctl {

/// A secret for showing: "********" for any that is not empty, whatever its length, unless revealed.
[[nodiscard]] inline QString secret(const QString &value, bool reveal)
{
    return reveal || value.isEmpty() ? value : QStringLiteral("********");
}

} // namespace vantle::ctl
