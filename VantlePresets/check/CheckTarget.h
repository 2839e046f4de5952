// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/model/VantlePreset.h"

#include <QtCore/QByteArray>

namespace vantle::check {

/// What answers at the other end of a stream.
enum class Peer : int { nobody = 1, folder, rtmp, rtsp, http, srtListener, srtCaller };

/// Where a preset streams to, as far as a look at it needs to know. A plain value; may hold secrets.
struct CheckTarget
{
    Peer peer = Peer::nobody;
    QString problem; ///< why there is nobody to ask, as "field: reason"; without secrets
    QString folder;  ///< where HLS is written on this machine
    QString host;    ///< a name or an address, of IPv6 without brackets
    quint16 port = 0;
    bool isEncrypted = false; ///< by TLS
    bool hasLogin = false;
    QString path;          ///< of an HTTP or RTSP address, with a slash first; without parameters
    QByteArray passphrase; ///< of SRT; "" for none
    QByteArray streamId;   ///< of SRT; "" for none
    int keyLength = 0;     ///< of SRT, in bytes; 0 leaves it to the library
};

/// Reads a preset's target; `output` stands in for the preset's own when it is not "". On the preset's
/// thread.
[[nodiscard]] CheckTarget targetOf(const VantlePreset &preset, const QString &output);

} // namespace vantle::check
