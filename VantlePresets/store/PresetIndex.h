// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/model/VantlePreset.h"
#include "VantlePresets/store/FileRelation.h"

#include <QtCore/QHash>

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace vantle {

using PresetsList = QList<std::shared_ptr<VantlePreset>>;

/// What the store knows about a listed preset beside the preset itself.
struct ListedPreset : std::enable_shared_from_this<ListedPreset>
{
    std::shared_ptr<VantlePreset> preset;
    /// The preset's name as far as the list is concerned; its name() differs while a user types.
    QString name;
    QString canonicalName;
    QByteArray collationKey; ///< of the canonical name, so that equal names stand together
    FileRelation relation;

    /// Lists the preset under its present name. Callable from any thread that owns the preset.
    explicit ListedPreset(std::shared_ptr<VantlePreset> listed);
    /// The same under another name.
    ListedPreset(std::shared_ptr<VantlePreset> listed, const QString &listedName);
    void setName(const QString &newName);

    /// The order of the list; names that the locale does not tell apart are ordered by their code units.
    [[nodiscard]] bool precedes(const ListedPreset &other) const;
};

/// The sorted list of presets with the ways to find one in it: by identity, by name, by row. Nothing is
/// ever sorted anew because one entry came or went.
class PresetIndex
{
public:
    using Entries = std::vector<std::shared_ptr<ListedPreset>>;

    [[nodiscard]] const PresetsList &presets() const { return m_presets; }

    [[nodiscard]] std::shared_ptr<ListedPreset> find(const VantlePreset *preset) const;
    /// Under canonical equivalence; of several an entry with these code units, else the first of the list.
    [[nodiscard]] std::shared_ptr<ListedPreset> findNamed(const QString &name) const;
    /// The entry of this name that stands for the file of this name; without one as findNamed().
    [[nodiscard]] std::shared_ptr<ListedPreset> findFile(const QString &name) const;
    /// Whether an entry other than the given one has the name.
    [[nodiscard]] bool isTaken(const QString &name, const VantlePreset *except = nullptr) const;

    [[nodiscard]] int rowOf(const ListedPreset &entry) const;
    /// Where the entry, listed or not, belongs among the others.
    [[nodiscard]] int insertionRow(const ListedPreset &entry) const;

    void insert(int row, std::shared_ptr<ListedPreset> entry);
    void remove(int row);
    /// Gives the entry a name and moves it to the row that follows from it, counted without the entry.
    void rename(const std::shared_ptr<ListedPreset> &entry, const QString &name, int from, int to);

    /// Adds many entries at once; they must be sorted.
    void merge(Entries entries);
    /// Leaves the index empty.
    [[nodiscard]] Entries takeEntries();

    /// In the order of the list.
    static void sort(Entries &entries);
    /// All of both, which must be sorted, in the order of the list.
    [[nodiscard]] static Entries merged(Entries a, Entries b);

private:
    [[nodiscard]] std::span<const std::shared_ptr<ListedPreset>> sortedLike(const QString &canonical) const;

    Entries m_entries;
    PresetsList m_presets; // the same rows
    QHash<const VantlePreset *, ListedPreset *> m_byPreset;
};

} // namespace vantle
