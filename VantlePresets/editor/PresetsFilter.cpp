// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/PresetsFilter.h"

#include "VantlePresets/editor/PresetsListModel.h"

#include <QtCore/QScopedValueRollback>

#include <algorithm>

namespace vantle {

PresetsFilter::PresetsFilter(PresetsListModel *presets, QObject *parent)
    : QSortFilterProxyModel(parent), m_presets(presets)
{
    setDynamicSortFilter(false);
    setSourceModel(presets);
}

void PresetsFilter::setText(const QString &text)
{
    const QStringList words = text.split(u' ', Qt::SkipEmptyParts);
    if (words == m_words)
        return;
    const QScopedValueRollback guard(m_isChanging, true);
    m_words = words;
    invalidateFilter();
}

bool PresetsFilter::filterAcceptsRow(int row, const QModelIndex &) const
{
    if (m_words.isEmpty())
        return true;
    const auto preset = m_presets->preset(m_presets->index(row));
    if (!preset)
        return false;
    const QString kind = displayName(preset->type());
    return std::all_of(m_words.begin(), m_words.end(), [&](const QString &word) {
        return preset->name().contains(word, Qt::CaseInsensitive) || kind.contains(word, Qt::CaseInsensitive);
    });
}

} // namespace vantle
