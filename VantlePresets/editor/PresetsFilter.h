// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QSortFilterProxyModel>
#include <QtCore/QStringList>

namespace vantle {

class PresetsListModel;

/// The rows of the presets list whose name or kind has every word that the user is looking for, in any case.
/// A name that is being typed hides no row; rows that come are judged when they do.
class PresetsFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit PresetsFilter(PresetsListModel *presets, QObject *parent = nullptr);

    /// All rows with an empty text.
    void setText(const QString &text);
    /// Rows are just going because of the text: no choice of the user's.
    [[nodiscard]] bool isChanging() const { return m_isChanging; }

protected:
    [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    PresetsListModel *m_presets;
    QStringList m_words;
    bool m_isChanging = false;
};

} // namespace vantle
