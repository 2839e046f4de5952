// SPDX-License-Identifier: MIT
#include "VantlePresets/store/PresetIndex.h"

#include "VantlePresets/store/NameRules.h"
#include "VantlePresets/store/PresetFile.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vantle {
namespace {

bool precedes(const std::shared_ptr<ListedPreset> &a, const std::shared_ptr<ListedPreset> &b)
{
    return a->precedes(*b);
}

} // namespace

ListedPreset::ListedPreset(std::shared_ptr<VantlePreset> listed) : ListedPreset(listed, listed->name()) {}

ListedPreset::ListedPreset(std::shared_ptr<VantlePreset> listed, const QString &listedName)
    : preset(std::move(listed))
{
    setName(listedName);
    relation.wanted.text = name;
}

void ListedPreset::setName(const QString &newName)
{
    name = newName;
    canonicalName = vantle::canonicalName(newName);
    collationKey = vantle::collationKey(canonicalName);
}

bool ListedPreset::precedes(const ListedPreset &other) const
{
    if (const int order = collationKey.compare(other.collationKey); order != 0)
        return order < 0;
    return name < other.name;
}

std::shared_ptr<ListedPreset> PresetIndex::find(const VantlePreset *preset) const
{
    ListedPreset *const found = m_byPreset.value(preset);
    return found ? found->shared_from_this() : nullptr;
}

std::shared_ptr<ListedPreset> PresetIndex::findNamed(const QString &name) const
{
    const QString canonical = canonicalName(name);
    std::shared_ptr<ListedPreset> first;
    for (const auto &entry : sortedLike(canonical)) {
        if (entry->name == name)
            return entry;
        if (!first && entry->canonicalName == canonical)
            first = entry;
    }
    return first;
}

std::shared_ptr<ListedPreset> PresetIndex::findFile(const QString &name) const
{
    const auto alike = sortedLike(canonicalName(name));
    const auto found = std::find_if(alike.begin(), alike.end(), [&](const auto &entry) {
        return entry->name == name && entry->relation.file->name() == name;
    });
    return found != alike.end() ? *found : findNamed(name);
}

bool PresetIndex::isTaken(const QString &name, const VantlePreset *except) const
{
    const QString canonical = canonicalName(name);
    const auto alike = sortedLike(canonical);
    return std::any_of(alike.begin(), alike.end(), [&](const auto &entry) {
        return entry->preset.get() != except && entry->canonicalName == canonical;
    });
}

/// The entries that the order does not tell from a canonical name; all of that name are among them.
std::span<const std::shared_ptr<ListedPreset>> PresetIndex::sortedLike(const QString &canonical) const
{
    const QByteArray key = collationKey(canonical);
    const auto begin =
        std::lower_bound(m_entries.begin(), m_entries.end(), key,
                         [](const auto &e, const QByteArray &k) { return e->collationKey < k; });
    const auto end = std::upper_bound(begin, m_entries.end(), key,
                                      [](const QByteArray &k, const auto &e) { return k < e->collationKey; });
    return {begin, end};
}

int PresetIndex::rowOf(const ListedPreset &entry) const
{
    auto at = std::lower_bound(m_entries.begin(), m_entries.end(), entry,
                               [](const auto &listed, const ListedPreset &e) { return listed->precedes(e); });
    while (at->get() != &entry) // entries of one name
        ++at;
    return static_cast<int>(at - m_entries.begin());
}

int PresetIndex::insertionRow(const ListedPreset &entry) const
{
    const auto at =
        std::upper_bound(m_entries.begin(), m_entries.end(), entry,
                         [](const ListedPreset &e, const auto &listed) { return e.precedes(*listed); });
    return static_cast<int>(at - m_entries.begin());
}

void PresetIndex::insert(int row, std::shared_ptr<ListedPreset> entry)
{
    m_byPreset.insert(entry->preset.get(), entry.get());
    m_presets.insert(row, entry->preset);
    m_entries.insert(m_entries.begin() + row, std::move(entry));
}

void PresetIndex::remove(int row)
{
    const auto at = m_entries.begin() + row;
    m_byPreset.remove((*at)->preset.get());
    m_presets.removeAt(row);
    m_entries.erase(at);
}

void PresetIndex::rename(const std::shared_ptr<ListedPreset> &entry, const QString &name, int from, int to)
{
    entry->setName(name);
    m_presets.move(from, to);
    const auto begin = m_entries.begin();
    if (from < to)
        std::rotate(begin + from, begin + from + 1, begin + to + 1);
    else
        std::rotate(begin + to, begin + from, begin + from + 1);
}

void PresetIndex::merge(Entries entries)
{
    m_entries = merged(std::move(m_entries), std::move(entries));
    m_byPreset.reserve(static_cast<qsizetype>(m_entries.size()));
    PresetsList presets;
    presets.reserve(static_cast<qsizetype>(m_entries.size()));
    for (const auto &entry : m_entries) {
        m_byPreset.insert(entry->preset.get(), entry.get());
        presets.append(entry->preset);
    }
    m_presets = std::move(presets);
}

PresetIndex::Entries PresetIndex::merged(Entries a, Entries b)
{
    if (a.empty())
        return b;
    Entries both;
    both.reserve(a.size() + b.size());
    std::merge(std::make_move_iterator(a.begin()), std::make_move_iterator(a.end()),
               std::make_move_iterator(b.begin()), std::make_move_iterator(b.end()), std::back_inserter(both),
               precedes);
    return both;
}

PresetIndex::Entries PresetIndex::takeEntries()
{
    m_presets.clear();
    m_byPreset.clear();
    return std::exchange(m_entries, {});
}

void PresetIndex::sort(Entries &entries)
{
    std::stable_sort(entries.begin(), entries.end(), precedes);
}

} // namespace vantle
