// SPDX-License-Identifier: MIT
#include "VantlePresets/check/CheckTarget.h"

#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SRTVantlePreset.h"
#include "VantlePresets/model/StreamAddress.h"

#include <QtCore/QUrlQuery>

#include <algorithm>
#include <array>

namespace vantle::check {
namespace {

using namespace Qt::StringLiterals;
using Protocol = RTMPVantlePreset::StreamingProtocol;

struct Scheme
{
    QLatin1StringView name;
    Peer peer;
    bool isEncrypted;
    quint16 port; ///< when neither address nor preset names one
};

constexpr std::array<Scheme, 6> kSchemes{{{"rtmp"_L1, Peer::rtmp, false, 1935},
                                          {"rtmps"_L1, Peer::rtmp, true, 443},
                                          {"rtsp"_L1, Peer::rtsp, false, 554},
                                          {"http"_L1, Peer::http, false, 80},
                                          {"https"_L1, Peer::http, true, 443},
                                          {"srt"_L1, Peer::srtListener, false, 0}}};

const Scheme *schemeOf(QStringView name)
{
    const auto *const found = std::find_if(kSchemes.begin(), kSchemes.end(),
                                           [&](const Scheme &scheme) { return name == scheme.name; });
    return found == kSchemes.end() ? nullptr : found;
}

QLatin1StringView schemeOf(Protocol protocol)
{
    switch (protocol) {
    case Protocol::rtmp:
        return "rtmp"_L1;
    case Protocol::rtmps:
        return "rtmps"_L1;
    case Protocol::rtspUDP:
    case Protocol::rtspTCP:
        return "rtsp"_L1;
    }
    return {};
}

CheckTarget nobody(const QString &problem)
{
    CheckTarget target;
    target.problem = problem;
    return target;
}

/// What the kinds of presets tell apart, in front of the address.
struct Source
{
    QString field;   ///< that holds the address
    QString address; ///< a host or a URL
    QString scheme;  ///< of an address without one
    qint64 port;     ///< of an address without one; 0 for none
    QList<Peer> allowed;
    bool isAnyScheme; ///< an address may name another transport of the kind
};

CheckTarget targetOf(const Source &source)
{
    const auto address = StreamAddress::parse(source.address);
    if (!address)
        return nobody(source.field + ": is no host and no URL"_L1);
    const Scheme *const scheme = schemeOf(address->scheme.isEmpty() ? source.scheme : address->scheme);
    if (scheme == nullptr || !source.allowed.contains(scheme->peer) ||
        (!source.isAnyScheme && scheme->name != source.scheme))
        return nobody(source.field + ": "_L1 + address->scheme + " is not what this preset sends"_L1);
    if (address->host.isEmpty() && scheme->peer != Peer::srtListener)
        return nobody(source.field + (source.address.isEmpty() ? ": is empty: there is no host to ask"_L1
                                                               : ": the host is missing"_L1));
    CheckTarget target;
    target.peer = scheme->peer;
    target.isEncrypted = scheme->isEncrypted;
    target.host = address->host;
    if (target.host.startsWith(u'['))
        target.host = target.host.sliced(1, target.host.size() - 2);
    target.hasLogin = !address->login.isEmpty();
    target.path = u'/' + address->path;
    const qint64 own = source.port != 0 ? source.port : scheme->port;
    const qint64 port = address->port.isEmpty() ? own : address->port.toLongLong();
    if (port < 1 || port > 65535)
        return nobody((address->port.isEmpty() ? u"portNumber"_s : source.field) +
                      u": %1 is not a port, which is 1 to 65535"_s.arg(port));
    target.port = static_cast<quint16>(port);
    return target;
}

CheckTarget targetOfHls(const VantlePreset &preset, const QString &output)
{
    if (output.contains("://"_L1))
        return targetOf({u"--output"_s, output, {}, 0, {Peer::http}, true});
    CheckTarget target;
    target.peer = Peer::folder;
    target.folder = output.isEmpty() ? preset.name() : output;
    return target;
}

CheckTarget targetOfPush(const RTMPVantlePreset &preset, const QString &output)
{
    const bool isOwn = output.isEmpty();
    // A service's preset whose host was emptied goes to the service.
    const QString url =
        preset.streamingURL().isEmpty()
            ? RTMPVantlePreset::withType(preset.type(), preset.name(), false, {})->streamingURL()
            : preset.streamingURL();
    return targetOf({isOwn ? u"streamingURL"_s : u"--output"_s,
                     isOwn ? url : output,
                     schemeOf(preset.streamingProtocol()),
                     preset.portNumber(),
                     {Peer::rtmp, Peer::rtsp},
                     !isOwn});
}

/// Texts as they are handed out: what an address says counts before the preset's fields.
void addSrtParameters(CheckTarget &target, const SRTVantlePreset &preset, const QString &address)
{
    if (preset.authenticate())
        target.passphrase = preset.streamKey().toUtf8();
    target.streamId = preset.application().toUtf8();
    bool isPassphraseNamed = false;
    const auto parsed = StreamAddress::parse(address);
    QString mode = u"caller"_s;
    const QUrlQuery query(parsed ? parsed->query : QString());
    for (const auto &[name, value] : query.queryItems(QUrl::FullyDecoded)) {
        if (value.isEmpty())
            continue; // as if it were not there
        if (name == "mode"_L1)
            mode = value;
        else if (name == "passphrase"_L1)
            target.passphrase = value.toUtf8();
        else if (name == "streamid"_L1 || name == "srt_streamid"_L1)
            target.streamId = value.toUtf8();
        else if (name == "pbkeylen"_L1)
            target.keyLength = value.toInt();
        isPassphraseNamed = isPassphraseNamed || name == "passphrase"_L1;
    }
    if (mode == "listener"_L1)
        target.peer = Peer::srtCaller;
    else if (mode != "caller"_L1)
        target = nobody(u"streamingURL: only the modes caller and listener can be checked"_s);
    else if (target.host.isEmpty())
        target = nobody(
            u"streamingURL: the host is missing; an address that waits for a caller says mode=listener"_s);
    else if (preset.authenticate() && !isPassphraseNamed && target.passphrase.isEmpty())
        target = nobody(u"streamKey: is the passphrase while authenticate is true; SRT files do not keep it: "
                        "give streamKey for this check"_s);
}

CheckTarget targetOfSrt(const SRTVantlePreset &preset, const QString &output)
{
    const bool isOwn = output.isEmpty();
    const QString address = isOwn ? preset.streamingURL() : output;
    if (address.isEmpty())
        return nobody(u"streamingURL: is empty: there is no host to ask"_s);
    const QString field = isOwn ? u"streamingURL"_s : u"--output"_s;
    CheckTarget target =
        targetOf({field, address, u"srt"_s, preset.portNumber(), {Peer::srtListener}, false});
    if (target.peer == Peer::srtListener && (target.path != "/"_L1 || target.hasLogin))
        return nobody(field + ": is no address such as srt://host:9000"_L1);
    if (target.peer == Peer::srtListener)
        addSrtParameters(target, preset, address);
    return target;
}

} // namespace

CheckTarget targetOf(const VantlePreset &preset, const QString &output)
{
    if (const auto *push = dynamic_cast<const RTMPVantlePreset *>(&preset))
        return targetOfPush(*push, output);
    if (const auto *srt = dynamic_cast<const SRTVantlePreset *>(&preset))
        return targetOfSrt(*srt, output);
    return targetOfHls(preset, output);
}

} // namespace vantle::check
