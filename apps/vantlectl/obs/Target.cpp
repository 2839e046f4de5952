// SPDX-License-Identifier: MIT
#include "apps/vantlectl/obs/PlanDraft.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/encoder/SrtParameters.h"
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SRTVantlePreset.h"
#include "VantlePresets/model/StreamAddress.h"

namespace vantle::ctl::obs {

using namespace Qt::StringLiterals;

namespace {

using StreamingProtocol = RTMPVantlePreset::StreamingProtocol;

constexpr auto kUrl = "streamingURL"_L1;
constexpr auto kKey = "streamKey"_L1;

/// A text that goes to OBS, and the field that it is from.
struct FieldText
{
    QLatin1StringView field;
    QString text;
    bool isSecret;
};

/// What OBS is told of a server; all five are sent each time, because OBS keeps those that are left out.
struct Service
{
    QString server;
    FieldText key{kKey, {}, true};
    FieldText login{"authenticationLogin"_L1, {}, false};
    FieldText password{"authenticationPassword"_L1, {}, true};
};

void setService(PlanDraft &draft, const Service &service)
{
    for (const FieldText &part : {service.key, service.login, service.password}) {
        if (hasControls(part.text))
            draft.refuse(part.field, u"holds control characters"_s);
        if (part.isSecret && !part.text.isEmpty())
            draft.plan.secrets.append(part.text);
    }
    draft.plan.service = {{u"server"_s, service.server},
                          {u"key"_s, service.key.text},
                          {u"use_auth"_s, !service.login.text.isEmpty() || !service.password.text.isEmpty()},
                          {u"username"_s, service.login.text},
                          {u"password"_s, service.password.text}};
}

/// The address with its port, which counts before the preset's. Refuses what is none.
std::optional<StreamAddress> addressOf(PlanDraft &draft, const QString &url, qint64 presetPort)
{
    auto address = StreamAddress::parse(url);
    if (!address) {
        draft.refuse(kUrl, u"is no host and no URL"_s);
        return std::nullopt;
    }
    if (address->host.isEmpty())
        draft.refuse(kUrl, u"the host is missing"_s);
    const qint64 port = address->port.isEmpty() ? presetPort : address->port.toLongLong();
    if (port < 1 || port > 65535)
        draft.refuse(address->port.isEmpty() ? u"portNumber"_s : QString(kUrl),
                     u"%1 is not a port, which is 1 to 65535"_s.arg(port));
    address->port = QString::number(port);
    return address;
}

QString serverOf(const StreamAddress &address)
{
    return address.scheme + "://"_L1 + address.host + u':' + address.port;
}

void setLogin(PlanDraft &draft, const RTMPVantlePreset &preset, const StreamAddress &address,
              Service &service)
{
    service.login.text = address.login;
    service.password.text = address.password;
    if (!preset.authenticate() || !address.login.isEmpty())
        return;
    service.login.text = preset.authenticationLogin();
    service.password.text = preset.authenticationPassword();
    for (const FieldText &part : {service.login, service.password}) {
        if (part.text.isEmpty())
            draft.refuse(part.field, u"is missing"_s);
    }
}

/// What the address names, then the preset's own. Without a key of the preset's own, the address's last part
/// is the key.
void setPath(PlanDraft &draft, const RTMPVantlePreset &preset, const StreamAddress &address, Service &service)
{
    QStringList path = address.path.split(u'/', Qt::SkipEmptyParts);
    if (!preset.application().isEmpty())
        path.append(preset.application());
    const bool isService =
        preset.type() == StreamingType::youTube || preset.type() == StreamingType::facebook;
    QString &key = service.key.text;
    key = preset.streamKey();
    if (key.isEmpty() && !isService && path.size() > 1)
        key = path.takeLast();
    if (path.isEmpty())
        draft.refuse(u"application"_s, u"is missing"_s);
    if (key.isEmpty())
        draft.refuse(kKey, isService ? u"is missing"_s
                                     : displayName(preset.type()) +
                                           " files keep none: add streamKey=@- to the command line, or end "
                                           "the address with it"_L1);
    else if (!address.query.isEmpty())
        key += u'?' + address.query;
    service.server += u'/' + path.join(u'/');
}

bool planPush(PlanDraft &draft, const RTMPVantlePreset &preset)
{
    const StreamingProtocol protocol = preset.streamingProtocol();
    if (protocol != StreamingProtocol::rtmp && protocol != StreamingProtocol::rtmps) {
        draft.refuse(u"streamingProtocol"_s, "OBS does not stream by "_L1 + displayName(protocol));
        return false;
    }
    // A service's preset whose host was emptied goes to the service.
    const QString url =
        preset.streamingURL().isEmpty()
            ? RTMPVantlePreset::withType(preset.type(), preset.name(), false, {})->streamingURL()
            : preset.streamingURL();
    auto address = addressOf(draft, url, preset.portNumber());
    if (!address)
        return true;
    const QString scheme = protocol == StreamingProtocol::rtmps ? u"rtmps"_s : u"rtmp"_s;
    if (!address->scheme.isEmpty() && address->scheme != scheme)
        draft.refuse(kUrl, address->scheme + " does not go with the protocol "_L1 + displayName(protocol));
    address->scheme = scheme;
    Service service{serverOf(*address)};
    setLogin(draft, preset, *address, service);
    setPath(draft, preset, *address, service);
    if (preset.isBackup())
        draft.note(u"isBackup"_s, u"does not change the address: set the service's backup host"_s);
    setService(draft, service);
    return true;
}

/// The address's parameters, which are those of an encoder's address; OBS counts microseconds as well.
encoder::SrtValues srtValuesOf(PlanDraft &draft, const QString &query)
{
    encoder::SrtValues values{{encoder::kSrtMode, u"caller"_s}, {encoder::kSrtLatency, u"200000"_s}};
    const EncoderRequest request;
    encoder::PlanDraft reader{draft.preset, request, nullptr, {}, {}, {}, {}, {}, {}, {}};
    encoder::setSrtParameters(reader, kUrl, values, query);
    draft.plan.refusals += reader.problems;
    draft.plan.notes += reader.notes;
    if (values.remove(encoder::kSrtPacketSize) > 0)
        draft.note(kUrl, u"the packet size is left to OBS"_s);
    const QStringList known{encoder::kSrtMode, encoder::kSrtLatency, encoder::kSrtStreamIdentifier,
                            encoder::kSrtPassphrase, encoder::kSrtKeyLength};
    for (const QString &name : values.keys()) {
        if (!known.contains(name))
            draft.refuse(kUrl, "OBS is told of passphrase, streamid, latency, mode and pbkeylen, not of "_L1 +
                                   name);
    }
    return values;
}

/// SRT's stream identifier and passphrase go where OBS has fields for them: in its address they could not
/// hold every character.
void planSrt(PlanDraft &draft, const SRTVantlePreset &preset)
{
    auto address = addressOf(draft, preset.streamingURL(), preset.portNumber());
    if (!address)
        return;
    if (address->scheme.isEmpty())
        address->scheme = u"srt"_s;
    if (address->scheme != "srt"_L1 || !address->path.isEmpty() || !address->login.isEmpty())
        draft.refuse(kUrl, u"is no address such as srt://host:9000"_s);

    const encoder::SrtValues values = srtValuesOf(draft, address->query);
    Service service;
    service.key = {"application"_L1, values.value(encoder::kSrtStreamIdentifier, preset.application()),
                   false};
    service.password = {
        kKey, values.value(encoder::kSrtPassphrase, preset.authenticate() ? preset.streamKey() : QString()),
        true};
    const qsizetype size = service.password.text.toUtf8().size();
    if (preset.authenticate() && size == 0)
        draft.refuse(kKey, u"is the passphrase while authenticate is true; SRT files do not keep it: add "
                           "streamKey=@- to the command line"_s);
    else if (size != 0 && (size < 10 || size > 64))
        draft.refuse(kKey, u"a passphrase has 10 to 64 characters"_s);
    else if (!preset.authenticate() && !preset.streamKey().isEmpty())
        draft.note(kKey, u"is used only while authenticate is true"_s);
    service.server = serverOf(*address) + "?mode="_L1 + values[encoder::kSrtMode] + "&latency="_L1 +
                     values[encoder::kSrtLatency];
    if (const QString length = values.value(encoder::kSrtKeyLength, size != 0 ? u"16"_s : QString());
        !length.isEmpty())
        service.server += "&pbkeylen="_L1 + length;
    setService(draft, service);
}

} // namespace

bool planTarget(PlanDraft &draft)
{
    if (const auto *push = dynamic_cast<const RTMPVantlePreset *>(&draft.preset))
        return planPush(draft, *push);
    if (const auto *srt = dynamic_cast<const SRTVantlePreset *>(&draft.preset)) {
        planSrt(draft, *srt);
        return true;
    }
    draft.refuse(u"type"_s,
                 u"OBS sends HLS to the services of its own list only; `vantlectl ffmpeg` sends this "
                 "preset"_s);
    return false;
}

} // namespace vantle::ctl::obs
