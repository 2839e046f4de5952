// SPDX-License-Identifier: MIT
#include "VantlePresets/encoder/SrtParameters.h"

#include "VantlePresets/core/Log.h"

#include <QtCore/QUrlQuery>

#include <algorithm>
#include <array>
#include <limits>

namespace vantle::encoder {
namespace {

using namespace Qt::StringLiterals;

enum class Kind {
    secret,       ///< a text of so many bytes
    number,       ///< passed on as it is
    milliseconds, ///< the encoder counts microseconds
    flag,
    choice,
};

struct SrtParameter
{
    QLatin1StringView name;       ///< of ffmpeg's address
    QLatin1StringView otherNames; ///< separated by blanks: of srt-live-transmit's, and options' names
    QLatin1StringView option;     ///< ffmpeg's
    Kind kind;
    qint64 lowest;
    qint64 highest;
    QLatin1StringView choices; ///< separated by ", "
};

constexpr qint64 kAny = std::numeric_limits<int>::max();

// Limits are those of the library, but for latency's: more than ten seconds is a number of microseconds.
constexpr std::array<SrtParameter, 19> kParameters{{
    {kSrtPassphrase, {}, "-passphrase"_L1, Kind::secret, 10, 79, {}},
    {kSrtStreamIdentifier, "srt_streamid"_L1, "-srt_streamid"_L1, Kind::secret, 1, 512, {}},
    {kSrtLatency, {}, "-latency"_L1, Kind::milliseconds, 0, 10000, {}},
    {"rcvlatency"_L1, {}, "-rcvlatency"_L1, Kind::milliseconds, 0, 10000, {}},
    {"peerlatency"_L1, {}, "-peerlatency"_L1, Kind::milliseconds, 0, 10000, {}},
    {kSrtMode, {}, "-mode"_L1, Kind::choice, 0, 0, "caller, listener, rendezvous"_L1},
    {kSrtKeyLength, {}, "-pbkeylen"_L1, Kind::choice, 0, 0, "0, 16, 24, 32"_L1},
    {kSrtPacketSize, "payload_size payloadsize"_L1, "-pkt_size"_L1, Kind::number, 188, 1456, {}},
    {"connect_timeout"_L1, "conntimeo"_L1, "-connect_timeout"_L1, Kind::number, 0, kAny, {}},
    {"enforced_encryption"_L1, "enforcedencryption"_L1, "-enforced_encryption"_L1, Kind::flag, 0, 1, {}},
    {"tlpktdrop"_L1, {}, "-tlpktdrop"_L1, Kind::flag, 0, 1, {}},
    {"nakreport"_L1, {}, "-nakreport"_L1, Kind::flag, 0, 1, {}},
    {"maxbw"_L1, {}, "-maxbw"_L1, Kind::number, -1, kAny, {}},
    {"inputbw"_L1, {}, "-inputbw"_L1, Kind::number, 0, kAny, {}},
    {"oheadbw"_L1, {}, "-oheadbw"_L1, Kind::number, 5, 100, {}},
    {"ffs"_L1, "fc"_L1, "-ffs"_L1, Kind::number, 32, kAny, {}},
    {"lossmaxttl"_L1, {}, "-lossmaxttl"_L1, Kind::number, 0, kAny, {}},
    {kSrtLinger, {}, "-linger"_L1, Kind::number, 0, 180, {}},
    {"transtype"_L1, {}, "-transtype"_L1, Kind::choice, 0, 0, "live"_L1},
}};

/// As the option takes it; nothing when it is out of range.
std::optional<QString> optionValue(const SrtParameter &parameter, const QString &text)
{
    const auto isWithin = [&](qint64 value) {
        return value >= parameter.lowest && value <= parameter.highest;
    };
    bool isNumber = false;
    const qint64 number = text.toLongLong(&isNumber);
    switch (parameter.kind) {
    case Kind::secret:
        return isWithin(text.toUtf8().size()) ? std::optional(text) : std::nullopt;
    case Kind::number:
        return isNumber && isWithin(number) ? std::optional(QString::number(number)) : std::nullopt;
    case Kind::milliseconds:
        return isNumber && isWithin(number) ? std::optional(QString::number(number * 1000)) : std::nullopt;
    case Kind::flag:
        if (QStringList{u"1"_s, u"true"_s, u"yes"_s, u"on"_s}.contains(text.toLower()))
            return u"1"_s;
        return QStringList{u"0"_s, u"false"_s, u"no"_s, u"off"_s}.contains(text.toLower())
                   ? std::optional(u"0"_s)
                   : std::nullopt;
    case Kind::choice:
        return QString(parameter.choices).split(", "_L1).contains(text) ? std::optional(text) : std::nullopt;
    }
    return std::nullopt;
}

/// "latency is 0 to 10000 milliseconds".
QString rule(const SrtParameter &parameter)
{
    const QString range =
        u"%1 is %2 to %3"_s.arg(parameter.name).arg(parameter.lowest).arg(parameter.highest);
    switch (parameter.kind) {
    case Kind::secret:
        return u"a %1 has %2 to %3 bytes"_s.arg(parameter.name).arg(parameter.lowest).arg(parameter.highest);
    case Kind::number:
        return range;
    case Kind::milliseconds:
        return range + " milliseconds"_L1;
    case Kind::flag:
        return parameter.name + " is 1 or 0"_L1;
    case Kind::choice:
        return u"%1 is one of %2"_s.arg(parameter.name, parameter.choices);
    }
    return range;
}

const SrtParameter *parameterOf(const QString &name)
{
    const auto found =
        std::find_if(kParameters.begin(), kParameters.end(), [&](const SrtParameter &parameter) {
            return parameter.name == name ||
                   QString(parameter.otherNames).split(u' ', Qt::SkipEmptyParts).contains(name);
        });
    return found == kParameters.end() ? nullptr : &*found;
}

} // namespace

void setSrtValue(PlanDraft &draft, const QString &field, SrtValues &values, const QString &name,
                 const QString &text)
{
    const SrtParameter *const parameter = parameterOf(name);
    if (!parameter) {
        // What stands there may be a secret without its name.
        draft.note(field, u"a parameter that the encoder does not know is left out"_s);
        return;
    }
    if (const auto value = optionValue(*parameter, text); !value)
        draft.problem(field, rule(*parameter));
    else if (hasControls(text))
        draft.problem(field, u"holds control characters"_s);
    else
        values.insert(parameter->name, *value);
}

void setSrtParameters(PlanDraft &draft, const QString &field, SrtValues &values, const QString &query)
{
    for (const auto &item : QUrlQuery(query).queryItems(QUrl::FullyDecoded)) {
        if (!item.second.isEmpty())
            setSrtValue(draft, field, values, item.first, item.second);
    }
}

void checkSrtHost(PlanDraft &draft, const QString &field, const SrtValues &values, const QString &host)
{
    if (host.isEmpty() && values.value(kSrtMode) != "listener"_L1)
        draft.problem(field, u"the host is missing; an address that waits for a caller says mode=listener"_s);
}

Arguments srtOptions(const SrtValues &values)
{
    Arguments options;
    for (const SrtParameter &parameter : kParameters) {
        const auto value = values.find(parameter.name);
        if (value != values.end())
            options.add(parameter.option, parameter.kind == Kind::secret ? Argument().secret(*value)
                                                                         : Argument().plain(*value));
    }
    return options;
}

} // namespace vantle::encoder
