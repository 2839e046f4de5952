// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/PresetsListModel.h"

#include "VantlePresets/editor/BundleIcon.h"
#include "VantlePresets/editor/EditorStyle.h"

#include <algorithm>

namespace vantle {
namespace {

/// One icon object per kind: each keeps the picture that it painted last.
QIcon kindIcon(StreamingType type)
{
    static QHash<StreamingType, QIcon> icons;
    QIcon &icon = icons[type];
    if (icon.isNull())
        icon = bundleIcon(displayName(type));
    return icon;
}

} // namespace

PresetsListModel::PresetsListModel(const std::shared_ptr<PresetsManager> &manager, QObject *parent)
    : QAbstractListModel(parent), m_manager(manager)
{
    followStore();
}

void PresetsListModel::followStore()
{
    const PresetsManager *store = m_manager.get();
    connect(store, &PresetsManager::rowAboutToBeInserted, this, [this](int row) {
        if (!isFiltered())
            beginInsertRows({}, row, row);
    });
    connect(store, &PresetsManager::rowInserted, this, [this](int row) {
        if (!isFiltered())
            return endInsertRows();
        const auto &preset = m_manager->presets().at(row);
        if (!passes(*preset))
            return;
        const int place = rowsBefore(row);
        beginInsertRows({}, place, place);
        m_filtered.insert(place, preset);
        endInsertRows();
    });
    connect(store, &PresetsManager::rowAboutToBeRemoved, this, &PresetsListModel::beginRemove);
    connect(store, &PresetsManager::rowRemoved, this, [this] {
        if (m_leaving >= 0) {
            if (isFiltered())
                m_filtered.removeAt(m_leaving);
            endRemoveRows();
        }
        m_isChanging = false;
    });
    connect(store, &PresetsManager::rowAboutToBeMoved, this, &PresetsListModel::beginMove);
    connect(store, &PresetsManager::rowMoved, this, [this] {
        if (m_leaving >= 0) {
            if (isFiltered())
                m_filtered.move(m_leaving, m_arriving > m_leaving ? m_arriving - 1 : m_arriving);
            endMoveRows();
        }
        m_isChanging = false;
    });
    connect(store, &PresetsManager::rowsAboutToBeReset, this, [this] {
        m_isChanging = true;
        for (const auto &connection : std::as_const(m_followed))
            disconnect(connection);
        m_followed.clear();
        beginResetModel();
    });
    connect(store, &PresetsManager::rowsReset, this, [this] {
        filterAll();
        endResetModel();
        m_isChanging = false;
    });
}

void PresetsListModel::beginRemove(int storeRow)
{
    const auto &preset = m_manager->presets().at(storeRow);
    m_isChanging = true;
    forget(preset.get());
    m_leaving = isFiltered() ? static_cast<int>(m_filtered.indexOf(preset)) : storeRow;
    if (m_leaving >= 0)
        beginRemoveRows({}, m_leaving, m_leaving);
}

void PresetsListModel::beginMove(int from, int to)
{
    m_isChanging = true;
    m_leaving = isFiltered() ? static_cast<int>(m_filtered.indexOf(m_manager->presets().at(from))) : from;
    m_arriving = isFiltered() ? rowsBefore(to) : to;
    if (m_arriving == m_leaving || m_arriving == m_leaving + 1)
        m_leaving = -1; // past rows only that the filter hides
    if (m_leaving >= 0)
        beginMoveRows({}, m_leaving, m_leaving, {}, m_arriving);
}

int PresetsListModel::rowsBefore(int storeRow) const
{
    const auto place = std::partition_point(
        m_filtered.begin(), m_filtered.end(),
        [&](const std::shared_ptr<VantlePreset> &preset) { return m_manager->rowOf(preset) < storeRow; });
    return static_cast<int>(place - m_filtered.begin());
}

bool PresetsListModel::passes(const VantlePreset &preset) const
{
    const QString kind = displayName(preset.type());
    return std::all_of(m_words.begin(), m_words.end(), [&](const QString &word) {
        return preset.name().contains(word, Qt::CaseInsensitive) || kind.contains(word, Qt::CaseInsensitive);
    });
}

void PresetsListModel::setFilter(const QString &text)
{
    const QStringList words = text.split(u' ', Qt::SkipEmptyParts);
    if (words == m_words)
        return;
    m_isChanging = true;
    beginResetModel();
    m_words = words;
    filterAll();
    endResetModel();
    m_isChanging = false;
}

void PresetsListModel::filterAll()
{
    m_filtered.clear();
    if (!isFiltered())
        return;
    for (const auto &preset : m_manager->presets()) {
        if (passes(*preset))
            m_filtered.append(preset);
    }
}

int PresetsListModel::rowCount(const QModelIndex &parent) const
{
    if (parent.isValid())
        return 0;
    return static_cast<int>((isFiltered() ? m_filtered : m_manager->presets()).size());
}

QVariant PresetsListModel::data(const QModelIndex &index, int role) const
{
    const auto preset = this->preset(index);
    if (!preset)
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        followName(preset);
        return preset->name();
    case Qt::ToolTipRole:
        return toolTipFor(preset->name() + u'\n' + displayName(preset->type()));
    case Qt::DecorationRole:
        return kindIcon(preset->type());
    case Qt::AccessibleDescriptionRole:
        return displayName(preset->type());
    default:
        return {};
    }
}

Qt::ItemFlags PresetsListModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemNeverHasChildren;
}

std::shared_ptr<VantlePreset> PresetsListModel::preset(const QModelIndex &index) const
{
    const PresetsList &presets = isFiltered() ? m_filtered : m_manager->presets();
    return index.isValid() && index.row() < presets.size() ? presets[index.row()] : nullptr;
}

QModelIndex PresetsListModel::indexOf(const std::shared_ptr<VantlePreset> &preset) const
{
    if (!preset)
        return {};
    const auto row = isFiltered() ? static_cast<int>(m_filtered.indexOf(preset)) : m_manager->rowOf(preset);
    return row < 0 ? QModelIndex() : index(row);
}

void PresetsListModel::followName(const std::shared_ptr<VantlePreset> &preset) const
{
    if (m_followed.contains(preset.get()))
        return;
    auto *self = const_cast<PresetsListModel *>(this); // to observe is no change of the model
    const VantlePreset *followed = preset.get();
    m_followed.insert(followed, connect(followed, &VantlePreset::nameChanged, self, [self, followed] {
                          const auto shared = std::const_pointer_cast<VantlePreset>(
                              std::static_pointer_cast<const VantlePreset>(followed->shared_from_this()));
                          const QModelIndex row = self->indexOf(shared);
                          if (row.isValid() && !self->m_isChanging)
                              Q_EMIT self->dataChanged(row, row);
                      }));
}

void PresetsListModel::forget(const VantlePreset *preset)
{
    disconnect(m_followed.take(preset));
}

} // namespace vantle
