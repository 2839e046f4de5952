// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QString>

#include <optional>

namespace vantle {

/// The parts of a whole address that somebody pastes into a form, as they were written: nothing is decoded,
/// for a stream key goes to the server as the service gave it out. "" for those that are missing.
struct PastedAddress
{
    QString scheme; ///< "rtmp", "rtmps", "rtsp" or "srt"
    QString login;
    QString password;
    QString host;
    QString port;
    QString path; ///< from the first "/" on, the query included

    /// Nothing for a text without one of these schemes, or that is no address.
    [[nodiscard]] static std::optional<PastedAddress> parse(const QString &text);

    /// What services call the application: the path up to its last part, "live2" of "/live2/key". The whole
    /// of it when there is one part only.
    [[nodiscard]] QString application() const;
    /// The last of several parts, the query included; services' keys may hold one.
    [[nodiscard]] QString streamKey() const;
};

} // namespace vantle
