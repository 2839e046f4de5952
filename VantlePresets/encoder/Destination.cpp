// SPDX-License-Identifier: MIT
#include "VantlePresets/encoder/PlanDraft.h"
#include "VantlePresets/encoder/ServerArgument.h"
#include "VantlePresets/encoder/SrtParameters.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SRTVantlePreset.h"

#include <QtCore/QUrl>

#include <algorithm>
#include <array>

namespace vantle::encoder {
namespace {

using namespace Qt::StringLiterals;
using StreamingProtocol = RTMPVantlePreset::StreamingProtocol;

struct Transport
{
    StreamingProtocol protocol;
    QLatin1StringView scheme;
    const Container *container;
    QLatin1StringView rtsp; ///< what carries RTSP's packets, "" for others
};

constexpr std::array<Transport, 4> kTransports{{{StreamingProtocol::rtmp, "rtmp"_L1, &kFlv, {}},
                                                {StreamingProtocol::rtmps, "rtmps"_L1, &kFlv, {}},
                                                {StreamingProtocol::rtspUDP, "rtsp"_L1, &kRtsp, "udp"_L1},
                                                {StreamingProtocol::rtspTCP, "rtsp"_L1, &kRtsp, "tcp"_L1}}};

/// Refuses texts that would end an argument or a line early.
void checkTexts(PlanDraft &draft, std::initializer_list<std::pair<QLatin1StringView, QString>> texts)
{
    for (const auto &[field, text] : texts) {
        if (hasControls(text))
            draft.problem(field, u"holds control characters"_s);
    }
}

/// Where a stream is sent to, and the field that says so.
struct Server
{
    QString field;
    StreamAddress address;
};

std::optional<Server> serverOf(PlanDraft &draft, const QString &streamingURL)
{
    const bool isOwn = draft.request.output().isEmpty();
    const QString field = isOwn ? u"streamingURL"_s : u"--output"_s;
    const auto address = StreamAddress::parse(isOwn ? streamingURL : draft.request.output());
    if (!address)
        draft.problem(field, u"is no host and no URL"_s);
    return address ? std::optional(Server{field, *address}) : std::nullopt;
}

/// The address's own port counts before the preset's.
void setPort(PlanDraft &draft, Server &server, qint64 presetPort)
{
    const bool isOwn = !server.address.port.isEmpty();
    if (isOwn)
        presetPort = server.address.port.toLongLong();
    else
        server.address.port = QString::number(presetPort);
    if (presetPort < 1 || presetPort > 65535)
        draft.problem(isOwn ? server.field : u"portNumber"_s,
                      u"%1 is not a port, which is 1 to 65535"_s.arg(presetPort));
}

const Transport &transportOf(PlanDraft &draft, const RTMPVantlePreset &preset, Server &server)
{
    const auto own = std::find_if(kTransports.begin(), kTransports.end(), [&](const Transport &transport) {
        return transport.protocol == preset.streamingProtocol();
    });
    QString &scheme = server.address.scheme;
    if (scheme.isEmpty())
        scheme = own->scheme;
    if (scheme == own->scheme)
        return *own;
    const auto named = std::find_if(kTransports.rbegin(), kTransports.rend(),
                                    [&](const Transport &transport) { return transport.scheme == scheme; });
    if (draft.request.output().isEmpty() || named == kTransports.rend())
        draft.problem(server.field, scheme + " does not go with the protocol "_L1 +
                                        displayName(preset.streamingProtocol()));
    return named == kTransports.rend() ? *own : *named;
}

void setLogin(PlanDraft &draft, const RTMPVantlePreset &preset, StreamAddress &address)
{
    if (!preset.authenticate() || !address.login.isEmpty())
        return;
    address.login = preset.authenticationLogin();
    address.password = preset.authenticationPassword();
    checkTexts(draft,
               {{"authenticationLogin"_L1, address.login}, {"authenticationPassword"_L1, address.password}});
    if (address.login.isEmpty())
        draft.problem(u"authenticationLogin"_s, u"is missing"_s);
    if (address.password.isEmpty())
        draft.problem(u"authenticationPassword"_s, u"is missing"_s);
    if (address.scheme == "rtsp"_L1) {
        address.login = QString::fromLatin1(QUrl::toPercentEncoding(address.login));
        address.password = QString::fromLatin1(QUrl::toPercentEncoding(address.password));
        return;
    }
    // ffmpeg takes what an RTMP address says as it stands, so that there is no way to write these.
    const auto checkPart = [&](QLatin1StringView field, const QString &text, QLatin1StringView separators) {
        if (std::any_of(text.begin(), text.end(), [&](QChar c) { return separators.contains(c); }))
            draft.problem(field, "an RTMP address can't hold any of "_L1 + separators + " here"_L1);
    };
    checkPart("authenticationLogin"_L1, address.login, ":@/?#"_L1);
    checkPart("authenticationPassword"_L1, address.password, "/?#"_L1);
}

/// "/application/stream key": what the address names, then the preset's own. Without a key of the preset's
/// own, the address's last part is the key.
void addPath(PlanDraft &draft, const RTMPVantlePreset &preset, const Server &server, Argument &target)
{
    QStringList visible = server.address.path.split(u'/', Qt::SkipEmptyParts);
    QString key;
    if (draft.request.output().isEmpty()) {
        if (!preset.application().isEmpty())
            visible.append(preset.application());
        key = preset.streamKey();
        checkTexts(draft, {{"application"_L1, preset.application()}, {"streamKey"_L1, key}});
    }
    const bool isService =
        preset.type() == StreamingType::youTube || preset.type() == StreamingType::facebook;
    if (key.isEmpty() && (!isService || !draft.request.output().isEmpty()) && visible.size() > 1)
        key = visible.takeLast();
    if (visible.isEmpty())
        draft.problem(draft.request.output().isEmpty() ? u"application"_s : server.field,
                      u"the application is missing"_s);
    if (key.isEmpty())
        draft.problem(draft.request.output().isEmpty() ? u"streamKey"_s : server.field,
                      isService ? u"the stream key is missing"_s
                                : displayName(preset.type()) +
                                      " files keep no stream key: add streamKey=@- to the command line, or "
                                      "end the address with it"_L1);
    target.plain(u'/' + visible.join(u'/') + u'/').secret(key);
    if (!server.address.query.isEmpty())
        target.plain(u"?"_s).secret(server.address.query);
}

void planPush(PlanDraft &draft, const RTMPVantlePreset &preset)
{
    // A service's preset whose host was emptied goes to the service.
    const QString host =
        preset.streamingURL().isEmpty()
            ? RTMPVantlePreset::withType(preset.type(), preset.name(), false, {})->streamingURL()
            : preset.streamingURL();
    auto server = serverOf(draft, host);
    if (!server)
        return;
    if (server->address.host.isEmpty())
        draft.problem(server->field, u"the host is missing"_s);
    const Transport &transport = transportOf(draft, preset, *server);
    draft.container = transport.container;
    setPort(draft, *server, preset.portNumber());
    setLogin(draft, preset, server->address);
    Argument target = serverArgument(server->address);
    addPath(draft, preset, *server, target);
    if (server->address.scheme == "rtmps"_L1)
        draft.note(server->field, kUncheckedCertificate);
    if (preset.isBackup())
        draft.note(u"isBackup"_s, u"does not change the address: set the service's backup host"_s);
    if (transport.rtsp.isEmpty())
        draft.destination.add({u"-f"_s, u"flv"_s, u"-flvflags"_s, u"no_duration_filesize"_s});
    else
        draft.destination.add({u"-f"_s, u"rtsp"_s, u"-rtsp_transport"_s, QString(transport.rtsp)});
    draft.destination.add(target);
}

/// What the preset and the address's parameters say; the latter count.
SrtValues srtValuesOf(PlanDraft &draft, const SRTVantlePreset &preset, const Server &server)
{
    // Seven transport packets are what SRT sends in one datagram. Without lingering, for so many seconds at
    // most, the stream's end would be lost when it closes.
    SrtValues values{{kSrtMode, u"caller"_s}, {kSrtPacketSize, u"1316"_s}, {kSrtLinger, u"5"_s}};
    setSrtValue(draft, {}, values, kSrtLatency, u"200"_s);
    if (!preset.application().isEmpty())
        setSrtValue(draft, u"application"_s, values, kSrtStreamIdentifier, preset.application());
    setSrtParameters(draft, server.field, values, server.address.query);
    if (values.contains(kSrtPassphrase)) {
        // The address's own.
    } else if (!preset.authenticate()) {
        if (!preset.streamKey().isEmpty())
            draft.note(u"streamKey"_s, u"is used only while authenticate is true"_s);
    } else if (preset.streamKey().isEmpty()) {
        draft.problem(u"streamKey"_s, u"is the passphrase while authenticate is true; SRT files do not keep "
                                      "it: add streamKey=@- to the command line"_s);
    } else {
        setSrtValue(draft, u"streamKey"_s, values, kSrtPassphrase, preset.streamKey());
    }
    if (values.contains(kSrtPassphrase) && !values.contains(kSrtKeyLength))
        values.insert(kSrtKeyLength, u"16"_s);
    return values;
}

void planSrt(PlanDraft &draft, const SRTVantlePreset &preset)
{
    draft.container = &kTransportStream;
    auto server = serverOf(draft, preset.streamingURL());
    if (!server)
        return;
    StreamAddress &address = server->address;
    if (address.scheme.isEmpty())
        address.scheme = u"srt"_s;
    if (address.scheme != "srt"_L1 || !address.path.isEmpty() || !address.login.isEmpty())
        draft.problem(server->field, u"is no address such as srt://host:9000"_s);
    setPort(draft, *server, preset.portNumber());
    const SrtValues values = srtValuesOf(draft, preset, *server);
    checkSrtHost(draft, server->field, values, address.host);
    draft.destination.add({u"-f"_s, u"mpegts"_s, u"-mpegts_flags"_s, u"+resend_headers"_s});
    draft.destination.add(srtOptions(values));
    draft.destination.add(serverArgument(address));
}

} // namespace

void planDestination(PlanDraft &draft)
{
    checkTexts(draft, {{"--output"_L1, draft.request.output()}});
    if (const auto *push = dynamic_cast<const RTMPVantlePreset *>(&draft.preset))
        planPush(draft, *push);
    else if (const auto *srt = dynamic_cast<const SRTVantlePreset *>(&draft.preset))
        planSrt(draft, *srt);
    else
        planHls(draft);
}

} // namespace vantle::encoder
