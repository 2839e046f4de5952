// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/store/PresetsManager.h"

#include <QtCore/QAbstractListModel>
#include <QtCore/QHash>

namespace vantle {

/// The store's list as rows for a view: each preset's name, and its kind's icon.
class PresetsListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    explicit PresetsListModel(const std::shared_ptr<PresetsManager> &manager, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;

    [[nodiscard]] std::shared_ptr<VantlePreset> preset(const QModelIndex &index) const;
    /// Invalid for a preset that is not listed, and for none.
    [[nodiscard]] QModelIndex indexOf(const std::shared_ptr<VantlePreset> &preset) const;

    /// Rows are just going or moving: what selection models make of it is not the user's choice.
    [[nodiscard]] bool isChanging() const { return m_isChanging; }

private:
    void followName(const std::shared_ptr<VantlePreset> &preset) const;
    void forget(const VantlePreset *preset);

    std::shared_ptr<PresetsManager> m_manager;
    bool m_isChanging = false;
    /// The presets whose names somebody has asked for: only these are observed.
    mutable QHash<const VantlePreset *, QMetaObject::Connection> m_followed;
};

} // namespace vantle
