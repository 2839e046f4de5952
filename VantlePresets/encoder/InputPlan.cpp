// SPDX-License-Identifier: MIT
#include "VantlePresets/encoder/SrtParameters.h"

#include "VantlePresets/model/StreamAddress.h"

#include <QtCore/QRegularExpression>

#include <algorithm>
#include <array>

namespace vantle {
namespace encoder {
namespace {

using namespace Qt::StringLiterals;

// What comes at the pace of its sender, who may have only one connection to give.
constexpr std::array<QLatin1StringView, 15> kLiveSchemes{
    "srt"_L1, "rtmp"_L1, "rtmps"_L1, "rtmpt"_L1, "rtmpts"_L1, "rtmpe"_L1, "rtsp"_L1, "rtsps"_L1,
    "rtp"_L1, "udp"_L1,  "tcp"_L1,   "tls"_L1,   "unix"_L1,   "pipe"_L1,  "fd"_L1};

QString schemeOf(const QString &input)
{
    static const QRegularExpression form(u"\\A([A-Za-z][A-Za-z0-9+.-]*):"_s);
    return form.match(input).captured(1).toLower();
}

/// The input as it is, with the secret parts of a URL known: password, parameters, an RTMP stream's key.
Argument placeOf(const QString &input)
{
    static const QRegularExpression form(
        u"\\A([A-Za-z][A-Za-z0-9+.-]*://)(?:([^/?@:]*:)([^/?@]*)(@))?([^?]*?)(\\?.*)?\\z"_s,
        QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = form.match(input);
    if (!match.hasMatch())
        return Argument().plain(input);
    QString path = match.captured(5);
    QString key;
    if (schemeOf(input).startsWith("rtmp"_L1) && path.count(u'/') > 1) {
        const qsizetype start = path.lastIndexOf(u'/') + 1;
        key = path.sliced(start);
        path.truncate(start);
    }
    const QString query = match.captured(6);
    return Argument()
        .plain(match.captured(1) + match.captured(2))
        .secret(match.captured(3))
        .plain(match.captured(4) + path)
        .secret(key)
        .plain(query.first(std::min<qsizetype>(query.size(), 1)))
        .secret(query.sliced(std::min<qsizetype>(query.size(), 1)));
}

/// "srt://:9000?mode=listener&latency=300": its parameters as options.
void addSrtInput(PlanDraft &draft, Arguments &input)
{
    const QString field = u"--input"_s;
    const auto address = StreamAddress::parse(draft.request.input());
    if (!address || !address->path.isEmpty() || !address->login.isEmpty() || address->port.isEmpty()) {
        draft.problem(field, u"is no address such as srt://host:9000"_s);
        return;
    }
    SrtValues values{{kSrtMode, u"caller"_s}};
    setSrtParameters(draft, field, values, address->query);
    checkSrtHost(draft, field, values, address->host);
    input.add(srtOptions(values));
    input.add(u"-i"_s, Argument().plain("srt://"_L1 + address->host + u':' + address->port));
}

} // namespace

void planInput(PlanDraft &draft)
{
    const QString &input = draft.request.input();
    if (input.isEmpty())
        return;
    Arguments arguments;
    if (schemeOf(input) == "srt"_L1)
        addSrtInput(draft, arguments);
    else
        arguments.add(u"-i"_s, placeOf(input));
    draft.addInput(arguments, isLiveInput(input));
}

} // namespace encoder

bool isLiveInput(const QString &input)
{
    const QString scheme = encoder::schemeOf(input);
    return input == QLatin1StringView("-") ||
           std::find(encoder::kLiveSchemes.begin(), encoder::kLiveSchemes.end(), scheme) !=
               encoder::kLiveSchemes.end();
}

} // namespace vantle
