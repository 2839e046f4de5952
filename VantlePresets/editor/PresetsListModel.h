// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/store/PresetsManager.h"

#include <QtCore/QAbstractListModel>
#include <QtCore/QHash>

namespace vantle {

/// The store's list as rows for a view: each preset's name, and its kind's icon. With a filter only the rows
/// that it lets through.
class PresetsListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    explicit PresetsListModel(const std::shared_ptr<PresetsManager> &manager, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// Lets the presets through whose name or kind has every word of the text, in any case; all with an empty
    /// one. A name that is typed afterwards hides no row; rows that come are judged when they do.
    void setFilter(const QString &text);

    [[nodiscard]] std::shared_ptr<VantlePreset> preset(const QModelIndex &index) const;
    /// Invalid for a preset that is not listed or not let through, and for none.
    [[nodiscard]] QModelIndex indexOf(const std::shared_ptr<VantlePreset> &preset) const;

    /// Rows are just going or moving: what selection models make of it is not the user's choice.
    [[nodiscard]] bool isChanging() const { return m_isChanging; }

private:
    void followName(const std::shared_ptr<VantlePreset> &preset) const;
    void forget(const VantlePreset *preset);
    void followStore();
    [[nodiscard]] bool isFiltered() const { return !m_words.isEmpty(); }
    [[nodiscard]] bool passes(const VantlePreset &preset) const;
    /// How many of the rows stand before the row of the store's list; with a filter it is searched for.
    [[nodiscard]] int rowsBefore(int storeRow) const;
    void filterAll();
    void beginRemove(int storeRow);
    void beginMove(int from, int to);

    std::shared_ptr<PresetsManager> m_manager;
    QStringList m_words;
    PresetsList m_filtered; ///< what the filter lets through, in the store's order
    int m_leaving = -1;     ///< the row that is just going, or on its way to m_arriving
    int m_arriving = -1;
    bool m_isChanging = false;
    /// The presets whose names somebody has asked for: only these are observed.
    mutable QHash<const VantlePreset *, QMetaObject::Connection> m_followed;
};

} // namespace vantle
