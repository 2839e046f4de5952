// SPDX-License-Identifier: MIT
#include "VantlePresets/advice/AdviceList.h"
#include "VantlePresets/advice/NearestText.h"
#include "VantlePresets/advice/Sources.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/document/DocumentReader.h"
#include "VantlePresets/model/PresetFactory.h"

#include <QtCore/QVariant>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using advice::AdviceList;

constexpr EnumerationTable<AdviceSeverity>::Case kSeverityCases[] = {{AdviceSeverity::error, "error"_L1},
                                                                     {AdviceSeverity::warning, "warning"_L1}};
constexpr EnumerationTable<AdviceSeverity> kSeverities{"unexpected AdviceSeverity value", kSeverityCases};

/// A text of a document that reads as another.
struct Misreading
{
    QLatin1StringView key;
    QLatin1StringView consequence;
    QStringList choices;
    QString nearest; ///< of the choices, "" when none is near
};

/// The document's misreadings, at most one: an unknown kind has no protocol.
std::optional<Misreading> misreadingOf(const document::ObjectReader &root)
{
    const QString type = root.string("type");
    const auto known = streamingTypes().fromText(type);
    if (!known) {
        const QStringList kinds = streamingTypes().texts();
        return Misreading{"type"_L1,
                          "is no known kind and reads as HLS, so that the next save drops server and key"_L1,
                          kinds, advice::nearestText(type, kinds)};
    }
    if (*known == StreamingType::hls || *known == StreamingType::srt)
        return std::nullopt; // these have no protocol
    const QString protocol = root.string("streamingProtocol");
    const QStringList protocols = streamingProtocols().texts();
    if (protocols.contains(protocol))
        return std::nullopt;
    return Misreading{"streamingProtocol"_L1, "is no known protocol and reads as RTMP"_L1, protocols,
                      advice::nearestText(protocol, protocols)};
}

Advice adviceOn(const Misreading &misreading)
{
    const QString suggestion = misreading.nearest.isEmpty()
                                   ? "expected one of: "_L1 + misreading.choices.join(", "_L1)
                                   : "the nearest is "_L1 + misreading.nearest;
    return {AdviceSeverity::error, misreading.key, misreading.consequence + "; "_L1 + suggestion,
            advice::source::kPresetFile};
}

/// Files may hold what nobody can type, and no encoder sends.
void adviseControls(AdviceList &list, const VantlePreset &preset)
{
    for (const Field &field : preset.fields()) {
        const QString place = field.key();
        const bool isSent =
            field.isAssignable() && field.isKept(preset.type()) &&
            (field.keptWhile().isEmpty() || preset.property(field.keptWhile().data()).toBool());
        if (isSent && field.type() == Field::Type::text && !list.isAbout(place) &&
            hasControls(preset.property(field.key().data()).toString()))
            list.error(place, u"holds a line break or another control character, which can't be sent"_s,
                       advice::source::kPresetFile);
    }
}

void advise(AdviceList &list, const VantlePreset &preset)
{
    if (const auto *push = dynamic_cast<const RTMPVantlePreset *>(&preset))
        adviseConnection(list, *push);
    else if (const auto *srt = dynamic_cast<const SRTVantlePreset *>(&preset))
        adviseConnection(list, *srt);
    adviseControls(list, preset);
    adviseVideo(list, preset);
    adviseAudio(list, preset);
    adviseIdentifiers(list, preset);
}

} // namespace

const EnumerationTable<AdviceSeverity> &adviceSeverities()
{
    return kSeverities;
}

QList<Advice> adviceFor(const VantlePreset &preset)
{
    AdviceList list;
    advise(list, preset);
    return list.list();
}

QList<Advice> adviceForTexts(QByteArrayView document)
{
    const document::Document json(document);
    const auto misreading = misreadingOf(json.root());
    return misreading ? QList<Advice>{adviceOn(*misreading)} : QList<Advice>();
}

QList<Advice> adviceForDocument(QByteArrayView document)
{
    const auto preset = decodePreset(document);
    const document::Document json(document);
    const auto misreading = misreadingOf(json.root());
    if (!misreading)
        return adviceFor(*preset);
    // What follows from a misreading is not told besides: the rest is judged as it was probably meant.
    auto *const push = dynamic_cast<RTMPVantlePreset *>(preset.get());
    if (!push)
        return {adviceOn(*misreading)};
    if (const auto meant = streamingProtocols().fromText(misreading->nearest))
        push->setStreamingProtocol(*meant);
    return QList<Advice>{adviceOn(*misreading)} + adviceFor(*push);
}

} // namespace vantle
