// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/obs/Connection.h"

#include <QtCore/QByteArray>

#include <optional>

namespace vantle::ctl::obs {

/// What OBS's own configuration says of its server.
struct ServerSettings
{
    quint16 port = 4455;
    QString password; ///< "" when none is asked for
};

/// Of OBS 30.2 and later: plugin_config/obs-websocket/config.json. Nothing when it is no such document.
[[nodiscard]] std::optional<ServerSettings> settingsOfJson(const QByteArray &content);
/// Of OBS before that: global.ini. Nothing when it has no section of the server.
[[nodiscard]] std::optional<ServerSettings> settingsOfIni(const QByteArray &content);

/// What the newest configuration file of this user's OBS says, of one from Flatpak too. Nothing when there is
/// none that can be read.
[[nodiscard]] std::optional<ServerSettings> ownServerSettings();

/// Whether the host is this machine by its name or address: "localhost", 127.0.0.0/8 and ::1. No name is
/// looked up.
[[nodiscard]] bool isLoopback(const QString &host);

} // namespace vantle::ctl::obs
