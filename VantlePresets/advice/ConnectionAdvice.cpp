// SPDX-License-Identifier: MIT
#include "VantlePresets/advice/AdviceList.h"
#include "VantlePresets/advice/ServiceRules.h"
#include "VantlePresets/advice/Sources.h"
#include "VantlePresets/model/ServiceIngest.h"
#include "VantlePresets/model/StreamAddress.h"

#include <algorithm>
#include <array>

namespace vantle::advice {
namespace {

using namespace Qt::StringLiterals;
using Protocol = RTMPVantlePreset::StreamingProtocol;

struct Scheme
{
    Protocol protocol;
    QLatin1StringView scheme;
};

constexpr std::array<Scheme, 4> kSchemes{{{Protocol::rtmp, "rtmp"_L1},
                                          {Protocol::rtmps, "rtmps"_L1},
                                          {Protocol::rtspUDP, "rtsp"_L1},
                                          {Protocol::rtspTCP, "rtsp"_L1}}};

/// On the machine itself, where a relay may stand before a service.
bool isLocal(const StreamAddress &address)
{
    return address.host.compare("localhost"_L1, Qt::CaseInsensitive) == 0 ||
           address.host.startsWith("127."_L1) || address.host == "[::1]"_L1;
}

/// An RTMP-family preset beside its service's rules.
struct ServiceCheck
{
    ServiceCheck(const RTMPVantlePreset &presetToCheck, const ServiceRules &itsRules,
                 const StreamAddress &itsAddress)
        : preset(presetToCheck), rules(itsRules), address(itsAddress), named(ingestOfHost(address.host))
    {
        if (named && named->type != rules.type)
            named = nullptr;
    }

    /// Whether protocol, port and application have to be the service's: not those of a relay.
    [[nodiscard]] bool goesToService() const
    {
        const bool isOwnHost = address.host.isEmpty() || named ||
                               address.host.endsWith("."_L1 + rules.domain, Qt::CaseInsensitive);
        return isOwnHost || (rules.judgesOtherHosts && !isLocal(address));
    }

    const RTMPVantlePreset &preset;
    const ServiceRules &rules;
    const StreamAddress &address;
    const ServiceIngest *named; ///< the ingest whose host the address is
};

/// The port that counts, and what says it: the address's own comes before the preset's.
struct Port
{
    Port(const StreamAddress &address, qint64 presetPort)
        : place(address.port.isEmpty() ? u"portNumber"_s : u"streamingURL"_s),
          number(address.port.isEmpty() ? presetPort : address.port.toLongLong())
    {
    }

    [[nodiscard]] bool isPossible() const { return number >= 1 && number <= 65535; }

    QString place;
    qint64 number;
};

/// "RTMPS or RTMP".
QString protocolsOf(StreamingType type)
{
    QStringList names;
    for (const ServiceIngest &ingest : serviceIngests()) {
        if (ingest.type == type && !names.contains(displayName(ingest.protocol)))
            names.prepend(displayName(ingest.protocol));
    }
    return names.join(" or "_L1);
}

void adviseHost(AdviceList &advice, const ServiceCheck &check)
{
    const QLatin1StringView name = check.rules.name;
    const ServiceIngest &best = *bestIngestOf(check.rules.type, check.preset.isBackup());
    if (check.address.host.isEmpty())
        advice.warning(u"streamingURL"_s, "is empty; %1's host is %2"_L1.arg(name, best.host), best.source);
    else if (!check.named)
        advice.warning(u"streamingURL"_s,
                       "is none of %1's known hosts; it hands out %2"_L1.arg(name, best.host), best.source);
    else if (!check.named->isCurrent)
        advice.warning(u"streamingURL"_s,
                       "names a host that %1 no longer hands out; today's is %2"_L1.arg(name, best.host),
                       best.source);
}

void adviseProtocolAndPort(AdviceList &advice, const ServiceCheck &check)
{
    const ServiceIngest *wanted =
        ingestFor(check.rules.type, check.preset.streamingProtocol(), check.named && check.named->isBackup);
    if (!wanted) {
        advice.error(u"streamingProtocol"_s,
                     "%1 takes %2 only"_L1.arg(check.rules.name, protocolsOf(check.rules.type)),
                     check.rules.protocolSource);
        wanted = bestIngestOf(check.rules.type, false);
    } else if (check.named && check.named->protocol != wanted->protocol) {
        advice.error(
            u"streamingURL"_s,
            "%1's host for %2 is %3"_L1.arg(check.rules.name, displayName(wanted->protocol), wanted->host),
            wanted->source);
    }
    const Port port(check.address, check.preset.portNumber());
    const QLatin1StringView form =
        port.isPossible() ? "%1's port for %2 is %3"_L1 : "a port is 1 to 65535; %1's for %2 is %3"_L1;
    if (port.number != wanted->port)
        advice.error(port.place,
                     form.arg(check.rules.name, displayName(wanted->protocol), QString::number(wanted->port)),
                     wanted->source);
}

void adviseApplication(AdviceList &advice, const ServiceCheck &check)
{
    QStringList parts = check.address.path.split(u'/', Qt::SkipEmptyParts);
    if (!check.preset.application().isEmpty())
        parts.append(check.preset.application());
    const QString application = parts.join(u'/');
    const ServiceIngest &first = *firstIngestOf(check.rules.type);
    if (application.section(u'?', 0, 0) != first.application) {
        const ServiceIngest &wanted = check.named ? *check.named : first;
        const QString text = "%1's application is %2"_L1.arg(check.rules.name, wanted.application);
        if (check.address.path.size() > 1)
            advice.error(u"streamingURL"_s, "has a path that comes before the application; "_L1 + text,
                         wanted.source);
        else
            advice.error(u"application"_s, text, wanted.source);
        return;
    }
    const ServiceIngest *backup = ingestFor(check.rules.type, check.preset.streamingProtocol(), true);
    if (!backup || !check.named)
        return;
    const bool saysBackup = application.contains("backup=1"_L1);
    if (check.named->isBackup && !saysBackup)
        advice.warning(
            u"application"_s,
            "%1's backup host takes the application %2"_L1.arg(check.rules.name, backup->application),
            backup->source);
    else if (!check.named->isBackup && saysBackup)
        advice.warning(u"application"_s,
                       "backup=1 belongs to %1's backup host, %2"_L1.arg(check.rules.name, backup->host),
                       backup->source);
    else if (!check.named->isBackup && check.preset.isBackup())
        advice.warning(u"isBackup"_s,
                       "%1's backup stream goes to %2 with the application %3"_L1.arg(
                           check.rules.name, backup->host, backup->application),
                       backup->source);
    else if (check.named->isBackup && !check.preset.isBackup())
        advice.warning(
            u"isBackup"_s,
            "%1's main stream does not go to the backup host, %2"_L1.arg(check.rules.name, backup->host),
            backup->source);
}

void adviseService(AdviceList &advice, const ServiceCheck &check)
{
    // The files of other kinds, which may name the service's host too, keep neither application nor key.
    const bool isOwnKind = check.preset.type() == check.rules.type;
    if (!isLocal(check.address))
        adviseHost(advice, check);
    if (check.goesToService())
        adviseProtocolAndPort(advice, check);
    else
        advisePort(advice, check.address, check.preset.portNumber());
    if (isOwnKind && check.goesToService())
        adviseApplication(advice, check);
    if (isOwnKind && check.preset.streamKey().isEmpty())
        advice.error(u"streamKey"_s, "%1's stream key is missing"_L1.arg(check.rules.name),
                     check.rules.protocolSource);
}

void adviseScheme(AdviceList &advice, const RTMPVantlePreset &preset, const StreamAddress &address)
{
    const bool suits =
        address.scheme.isEmpty() || std::any_of(kSchemes.begin(), kSchemes.end(), [&](const Scheme &scheme) {
            return scheme.protocol == preset.streamingProtocol() && scheme.scheme == address.scheme;
        });
    if (!suits)
        advice.error(u"streamingURL"_s,
                     "begins with another scheme than that of %1, the preset's protocol"_L1.arg(
                         displayName(preset.streamingProtocol())),
                     source::kPresetFile);
}

/// ffmpeg sends what an RTMP address says as it stands; other encoders decode escapes.
void adviseCharacters(AdviceList &advice, QLatin1StringView field, const QString &text,
                      QLatin1StringView unsafe)
{
    if (std::any_of(text.begin(), text.end(), [&](QChar c) { return c == u' ' || unsafe.contains(c); }))
        advice.warning(
            field, "holds a blank or one of %1, which encoders read differently in an address"_L1.arg(unsafe),
            source::kFfmpegManual);
}

void adviseLogin(AdviceList &advice, const RTMPVantlePreset &preset, const StreamAddress &address)
{
    const bool isInAddress = !address.login.isEmpty();
    if (carriesFlv(preset))
        adviseCharacters(advice, "streamingURL"_L1, QString(address.login + address.password), "%+"_L1);
    if (!preset.authenticate() || isInAddress)
        return;
    const QString missing = u"is missing; a server that asks wants login and password"_s;
    if (preset.authenticationLogin().isEmpty())
        advice.error(u"authenticationLogin"_s, missing, source::kFfmpegManual);
    if (preset.authenticationPassword().isEmpty())
        advice.error(u"authenticationPassword"_s, missing, source::kFfmpegManual);
    if (!carriesFlv(preset))
        return;
    adviseCharacters(advice, "authenticationLogin"_L1, preset.authenticationLogin(), "%+&/:"_L1);
    adviseCharacters(advice, "authenticationPassword"_L1, preset.authenticationPassword(), "%+&/"_L1);
    constexpr qsizetype kLongestLogin = 49;
    if (preset.authenticationLogin().toUtf8().size() > kLongestLogin)
        advice.warning(u"authenticationLogin"_s,
                       u"is longer than 49 bytes, of which ffmpeg sends the first 49"_s,
                       source::kFfmpegManual);
}

} // namespace

void advisePort(AdviceList &advice, const StreamAddress &address, qint64 presetPort)
{
    const Port port(address, presetPort);
    if (!port.isPossible())
        advice.error(port.place, u"a port is 1 to 65535"_s, source::kPorts);
}

void adviseConnection(AdviceList &advice, const RTMPVantlePreset &preset)
{
    const ServiceRules *rules = rulesFor(preset);
    const auto address = StreamAddress::parse(preset.streamingURL());
    if (!address) {
        advice.error(u"streamingURL"_s, u"is no host and no URL such as rtmp://host:1935/live"_s,
                     source::kPresetFile);
        return;
    }
    if (!rules && address->host.isEmpty())
        advice.error(u"streamingURL"_s, u"the server's host or URL is missing"_s, source::kPresetFile);
    adviseScheme(advice, preset, *address);
    if (rules)
        adviseService(advice, {preset, *rules, *address});
    else
        advisePort(advice, *address, preset.portNumber());
    if (carriesFlv(preset))
        adviseCharacters(advice, "streamKey"_L1, preset.streamKey(),
                         rules && rules->keyHoldsParameters ? "%+/"_L1 : "%+&/"_L1);
    adviseLogin(advice, preset, *address);
}

} // namespace vantle::advice
