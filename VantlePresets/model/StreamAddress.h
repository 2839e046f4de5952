// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"

#include <QtCore/QString>

#include <optional>

namespace vantle {

/// The parts of a host or URL as they were written; "" for those that are missing. A plain value, to be read
/// and changed part by part.
///
/// Nothing is decoded or encoded: a stream key goes to the server as the service gave it out.
struct VANTLE_PRESETS_EXPORT StreamAddress
{
    QString scheme;   ///< in lower case
    QString login;    ///< before the password
    QString password; ///< a secret
    QString host;     ///< a name, or an address, of IPv6 in brackets
    QString port;     ///< up to five digits
    QString path;     ///< without the slashes at its ends
    QString query;    ///< without "?"; can hold secrets

    /// Reads "host", "host:1935/live" or a whole URL. Nothing when it is none of these. Callable from any
    /// thread.
    [[nodiscard]] static std::optional<StreamAddress> parse(const QString &text);

    /// The parts as one text, as they are: what parse() read, unless something was changed. Callable from any
    /// thread.
    [[nodiscard]] QString text() const;
};

/// A preset's address for showing. What may be secret in it is masked: the password, the parameters, and the
/// last of two or more parts of the path, which is the stream key where a file keeps none. A text that is no
/// address is masked as a whole. Callable from any thread.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString shownAddress(const QString &text);

/// A preset's address with what shownAddress() masks left out. Callable from any thread.
[[nodiscard]] VANTLE_PRESETS_EXPORT QString addressWithoutSecrets(const QString &text);

} // namespace vantle
