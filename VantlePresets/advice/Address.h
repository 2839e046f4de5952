// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QString>

#include <optional>

namespace vantle::advice {

/// The parts of a preset's "streamingURL" as they were written; "" for those that are missing. May hold
/// secrets.
struct Address
{
    QString scheme;   ///< in lower case
    QString userInfo; ///< "login:password"
    QString host;
    QString port;
    QString path;  ///< with the slash that it begins with
    QString query; ///< without "?"

    /// Reads "host", "host:1935/live" or a whole URL. Nothing when it is none of these.
    [[nodiscard]] static std::optional<Address> parse(const QString &text);

    /// The address as it is written; what parse() read, unless it was changed.
    [[nodiscard]] QString text() const;

    /// On the machine itself, where a relay may stand before a service.
    [[nodiscard]] bool isLocal() const;
};

} // namespace vantle::advice
