// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/PresetsListModel.h"

#include "VantlePresets/editor/BundleIcon.h"
#include "VantlePresets/editor/EditorStyle.h"

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
    const PresetsManager *store = manager.get();
    connect(store, &PresetsManager::rowAboutToBeInserted, this,
            [this](int row) { beginInsertRows({}, row, row); });
    connect(store, &PresetsManager::rowInserted, this, [this] { endInsertRows(); });
    connect(store, &PresetsManager::rowAboutToBeRemoved, this, [this](int row) {
        m_isChanging = true;
        forget(m_manager->presets().at(row).get());
        beginRemoveRows({}, row, row);
    });
    connect(store, &PresetsManager::rowRemoved, this, [this] {
        endRemoveRows();
        m_isChanging = false;
    });
    connect(store, &PresetsManager::rowAboutToBeMoved, this, [this](int from, int to) {
        m_isChanging = true;
        beginMoveRows({}, from, from, {}, to);
    });
    connect(store, &PresetsManager::rowMoved, this, [this] {
        endMoveRows();
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
        endResetModel();
        m_isChanging = false;
    });
}

int PresetsListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_manager->presets().size());
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
        return toolTipFor(preset->name());
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
    const PresetsList &presets = m_manager->presets();
    return index.isValid() && index.row() < presets.size() ? presets[index.row()] : nullptr;
}

QModelIndex PresetsListModel::indexOf(const std::shared_ptr<VantlePreset> &preset) const
{
    const int row = preset ? m_manager->rowOf(preset) : -1;
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
