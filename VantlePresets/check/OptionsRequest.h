// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QByteArrayView>
#include <QtCore/QString>

namespace vantle::check {

/// What the first line of an answer to OPTIONS tells.
struct OptionsAnswer
{
    bool isGood;
    QString text;
};

/// Judges "HTTP/1.1 204 No Content". `protocol` is "HTTP" or "RTSP". A login that the address names is not
/// sent, so that a server which asks for one is good then.
[[nodiscard]] OptionsAnswer judgeOptionsAnswer(QByteArrayView firstLine, QLatin1StringView protocol,
                                               bool hasLogin);

} // namespace vantle::check
