// SPDX-License-Identifier: MIT
#include "VantlePresets/advice/AdviceList.h"
#include "VantlePresets/advice/Sources.h"
#include "VantlePresets/model/StreamAddress.h"

#include <QtCore/QUrlQuery>

#include <algorithm>
#include <array>

namespace vantle::advice {
namespace {

using namespace Qt::StringLiterals;

/// What a parameter of an SRT address is measured by.
enum class Measure { bytes, number, oneOf };

struct ParameterRule
{
    QLatin1StringView name;
    Measure measure;
    qint64 lowest;
    qint64 highest;
    QLatin1StringView choices; ///< for oneOf, separated by blanks
    AdviceSeverity severity;
    QLatin1StringView text; ///< when the rule is broken
    QLatin1StringView source;
};

// Of a parameter's rows the first that is broken counts.
constexpr std::array<ParameterRule, 8> kParameters{
    {{"passphrase"_L1,
      Measure::bytes,
      10,
      80,
      {},
      AdviceSeverity::error,
      "a passphrase has 10 to 79 bytes"_L1,
      source::kSrtOptions},
     {"passphrase"_L1,
      Measure::bytes,
      10,
      79,
      {},
      AdviceSeverity::warning,
      "a passphrase has 10 to 79 bytes; only some programs take 80"_L1,
      source::kSrtOptions},
     {"pbkeylen"_L1, Measure::oneOf, 0, 0, "0 16 24 32"_L1, AdviceSeverity::error,
      "pbkeylen is 16, 24 or 32 bytes, or 0 to leave it to the other side"_L1, source::kSrtOptions},
     {"streamid"_L1,
      Measure::bytes,
      0,
      512,
      {},
      AdviceSeverity::error,
      "a stream identifier has at most 512 bytes"_L1,
      source::kSrtOptions},
     {"mode"_L1, Measure::oneOf, 0, 0, "caller listener rendezvous"_L1, AdviceSeverity::error,
      "mode is caller, listener or rendezvous"_L1, source::kSrtTransmit},
     {"latency"_L1,
      Measure::number,
      0,
      10000,
      {},
      AdviceSeverity::warning,
      "a latency is in milliseconds, at most 10000; only ffmpeg's own addresses count microseconds"_L1,
      source::kSrtOptions},
     {"pkt_size"_L1,
      Measure::number,
      188,
      1456,
      {},
      AdviceSeverity::warning,
      "a packet has at most 1456 bytes; 1316 is seven transport packets"_L1,
      source::kSrtLive},
     {"payloadsize"_L1,
      Measure::number,
      188,
      1456,
      {},
      AdviceSeverity::warning,
      "a packet has at most 1456 bytes; 1316 is seven transport packets"_L1,
      source::kSrtLive}}};

bool suits(const ParameterRule &rule, const QString &value)
{
    bool isNumber = false;
    qint64 measured = 0;
    switch (rule.measure) {
    case Measure::oneOf:
        return QString(rule.choices).split(u' ').contains(value);
    case Measure::bytes:
        measured = value.toUtf8().size();
        return measured >= rule.lowest && measured <= rule.highest;
    case Measure::number:
        measured = value.toLongLong(&isNumber);
        return isNumber && measured >= rule.lowest && measured <= rule.highest;
    }
    programmingFault("unexpected Measure value");
}

void adviseValue(AdviceList &advice, const QString &place, QStringView name, const QString &value)
{
    const auto *const broken =
        std::find_if(kParameters.begin(), kParameters.end(),
                     [&](const ParameterRule &rule) { return rule.name == name && !suits(rule, value); });
    if (broken != kParameters.end())
        advice.add(broken->severity, place, broken->text, broken->source);
}

void adviseEscapes(AdviceList &advice, const QUrlQuery &query)
{
    const auto items = query.queryItems(QUrl::FullyEncoded);
    const bool isEscaped = std::any_of(items.begin(), items.end(), [](const auto &item) {
        return (item.first == "passphrase"_L1 || item.first == "streamid"_L1) &&
               (item.second.contains(u'%') || item.second.contains(u'+'));
    });
    if (isEscaped)
        advice.warning(u"streamingURL"_s,
                       u"encoders read \"%\" and \"+\" in an SRT address differently; letters, digits and "
                       "\"._-\" are safe in passphrase and streamid"_s,
                       source::kFfmpegManual);
}

} // namespace

void adviseConnection(AdviceList &advice, const SRTVantlePreset &preset)
{
    const auto address = StreamAddress::parse(preset.streamingURL());
    if (!address) {
        advice.error(u"streamingURL"_s, u"is no host and no URL such as srt://host:9000"_s,
                     source::kPresetFile);
        return;
    }
    const QUrlQuery query(address->query);
    if (address->host.isEmpty() && !query.hasQueryItem(u"mode"_s))
        advice.error(u"streamingURL"_s,
                     u"the host is missing; an address that waits for a caller says mode=listener"_s,
                     source::kSrtTransmit);
    if (!address->scheme.isEmpty() && address->scheme != "srt"_L1)
        advice.error(u"streamingURL"_s, u"an SRT address begins with srt://"_s, source::kPresetFile);
    advisePort(advice, *address, preset.portNumber());
    for (const auto &item : query.queryItems(QUrl::FullyDecoded))
        adviseValue(advice, u"streamingURL"_s, item.first, item.second);
    adviseEscapes(advice, query);
    // Not in files; a host or an assignment may have set them.
    if (preset.authenticate() && !preset.streamKey().isEmpty())
        adviseValue(advice, u"streamKey"_s, u"passphrase", preset.streamKey());
    if (!preset.application().isEmpty())
        adviseValue(advice, u"application"_s, u"streamid", preset.application());
}

} // namespace vantle::advice
