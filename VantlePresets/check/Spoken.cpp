// SPDX-License-Identifier: MIT
#include "VantlePresets/check/Spoken.h"

#include <array>

namespace vantle::check {

using namespace Qt::StringLiterals;

namespace {

struct Beginning
{
    QByteArrayView bytes;
    QLatin1StringView language;
};

/// 0x15 and 0x16 with the major version 3 are TLS's alert and handshake records (RFC 8446, 5.1).
constexpr std::array<Beginning, 7> kBeginnings{{{"HTTP/", "HTTP"_L1},
                                                {"RTSP/", "RTSP"_L1},
                                                {"SSH-", "SSH"_L1},
                                                {"220 ", "FTP or SMTP"_L1},
                                                {"* OK", "IMAP"_L1},
                                                {"\x15\x03", "TLS"_L1},
                                                {"\x16\x03", "TLS"_L1}}};

} // namespace

QString languageOf(QByteArrayView beginning)
{
    for (const Beginning &known : kBeginnings) {
        if (beginning.startsWith(known.bytes))
            return known.language;
    }
    return {};
}

QString speaksOther(QByteArrayView beginning, QLatin1StringView wanted)
{
    const QString language = languageOf(beginning);
    if (language == wanted)
        return "the server answers with "_L1 + wanted + " that can't be read"_L1;
    if (language.isEmpty())
        return "the server speaks something else than "_L1 + wanted;
    return "the server speaks "_L1 + language + ", not "_L1 + wanted;
}

} // namespace vantle::check
