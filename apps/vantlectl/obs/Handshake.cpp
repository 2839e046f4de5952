// SPDX-License-Identifier: MIT
#include "apps/vantlectl/obs/Handshake.h"

#include <QtCore/QCryptographicHash>

#include <algorithm>
#include <array>

namespace vantle::ctl::obs {

using namespace Qt::StringLiterals;

namespace {

QByteArray digest(const QByteArray &text)
{
    return QCryptographicHash::hash(text, QCryptographicHash::Sha256).toBase64();
}

struct CloseCode
{
    int code;
    QLatin1StringView meaning;
};

// Of the protocol's version 5; what only a mistake in this program brings about is left to the server's
// words.
constexpr std::array<CloseCode, 4> kCloseCodes{{{1001, "OBS is ending"_L1},
                                                {4009, "it refuses the password"_L1},
                                                {4010, "it speaks another version of the protocol than 5"_L1},
                                                {4011, "somebody closed this connection in OBS"_L1}}};

} // namespace

QString authenticationAnswer(const QString &password, const QString &salt, const QString &challenge)
{
    const QByteArray secret = digest((password + salt).toUtf8());
    return QString::fromLatin1(digest(secret + challenge.toUtf8()));
}

QString closeReason(int code, const QString &serverText)
{
    const auto known = std::find_if(kCloseCodes.begin(), kCloseCodes.end(),
                                    [&](const CloseCode &row) { return row.code == code; });
    if (known != kCloseCodes.end())
        return known->meaning;
    const QString text = serverText.isEmpty() ? u"no reason given"_s : serverText;
    return u"it ended the connection (%1: %2)"_s.arg(code).arg(text);
}

} // namespace vantle::ctl::obs
