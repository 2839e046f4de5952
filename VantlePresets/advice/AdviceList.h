// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/advice/Advice.h"
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SRTVantlePreset.h"

#include <algorithm>

namespace vantle {

struct StreamAddress;

}

namespace vantle::advice {

/// What the rules have found so far. Texts never repeat what a preset's texts hold.
class AdviceList
{
public:
    void add(AdviceSeverity severity, const QString &place, const QString &text, QLatin1StringView source)
    {
        m_list.append({severity, place, text, source});
    }
    void error(const QString &place, const QString &text, QLatin1StringView source)
    {
        add(AdviceSeverity::error, place, text, source);
    }
    void warning(const QString &place, const QString &text, QLatin1StringView source)
    {
        add(AdviceSeverity::warning, place, text, source);
    }

    [[nodiscard]] bool isAbout(const QString &place) const
    {
        return std::any_of(m_list.begin(), m_list.end(),
                           [&](const Advice &advice) { return advice.place == place; });
    }
    [[nodiscard]] const QList<Advice> &list() const { return m_list; }

private:
    QList<Advice> m_list;
};

/// "videoSettings[1].bitRate"; without a field the element itself.
[[nodiscard]] inline QString placeOf(QLatin1StringView list, qsizetype index, QLatin1StringView field = {})
{
    const QString element = QStringLiteral("%1[%2]").arg(list).arg(index);
    return field.isEmpty() ? element : element + u'.' + field;
}

/// Whether the preset's protocol carries FLV: one video and one audio stream, as the format was first made.
[[nodiscard]] inline bool carriesFlv(const VantlePreset &preset)
{
    using Protocol = RTMPVantlePreset::StreamingProtocol;
    const auto *push = dynamic_cast<const RTMPVantlePreset *>(&preset);
    return push &&
           (push->streamingProtocol() == Protocol::rtmp || push->streamingProtocol() == Protocol::rtmps);
}

// Each judges one side of a preset.
void adviseConnection(AdviceList &advice, const RTMPVantlePreset &preset);
void adviseConnection(AdviceList &advice, const SRTVantlePreset &preset);
void adviseVideo(AdviceList &advice, const VantlePreset &preset);
void adviseAudio(AdviceList &advice, const VantlePreset &preset);
/// Identifiers of MPEG-TS packets, where the preset's container has them.
void adviseIdentifiers(AdviceList &advice, const VantlePreset &preset);

/// Judges the port that counts: the address's own comes before the preset's.
void advisePort(AdviceList &advice, const StreamAddress &address, qint64 presetPort);

} // namespace vantle::advice
