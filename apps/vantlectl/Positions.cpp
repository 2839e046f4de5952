// SPDX-License-Identifier: MIT
#include "apps/vantlectl/Positions.h"

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

bool isAnother(const QByteArrayList &before, const QByteArrayList &now, qsizetype position)
{
    if (position >= before.size() || position >= now.size()) // one that the assignments add
        return before.size() != now.size();
    if (before[position] == now[position])
        return false;
    return before.size() != now.size() || now.contains(before[position]);
}

template <class Settings>
QByteArrayList textsOf(const QList<std::shared_ptr<Settings>> &list)
{
    QByteArrayList texts;
    for (const auto &settings : list)
        texts.append(settings->encoded(document::Format::compact));
    return texts;
}

QHash<QString, QByteArrayList> listsOf(const VantlePreset &preset)
{
    return {{u"videoSettings"_s, textsOf(preset.videoSettings())},
            {u"audioSettings"_s, textsOf(preset.audioSettings())}};
}

} // namespace

Positions::Positions(const VantlePreset &preset) : m_lists(listsOf(preset)) {}

void Positions::require(const VantlePreset &preset, const QList<Assignment> &assignments) const
{
    const auto present = listsOf(preset);
    for (const Assignment &assignment : assignments) {
        const QStringList parts = assignment.path().split(u'.');
        bool isPosition = false;
        const qsizetype position = parts.size() > 1 ? parts[1].toInt(&isPosition) : 0;
        if (isPosition && isAnother(m_lists.value(parts[0]), present.value(parts[0]), position))
            throw AssignmentError(assignment.path(), u"another process has changed the list meanwhile"_s);
    }
}

} // namespace vantle::ctl
