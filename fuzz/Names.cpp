// SPDX-License-Identifier: MIT
#include "fuzz/FuzzTarget.h"

#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/store/NameRules.h"
#include "VantlePresets/store/PresetIndex.h"

#include <algorithm>
#include <limits>

// Names are separated by NUL: the first is the one to derive others from, the rest are listed. They are UTF-8
// unless the input begins with a NUL; then they are UTF-16, lone surrogates included.

namespace vantle::fuzz {
namespace {

constexpr qsizetype kMostNames = 16; // the comparison is tried on all triples

QStringList namesFrom(QByteArrayView input)
{
    QString text;
    if (input.startsWith('\0')) {
        for (qsizetype i = 1; i + 1 < input.size(); i += 2)
            text += QChar(static_cast<uchar>(input[i]), static_cast<uchar>(input[i + 1]));
    } else {
        text = QString::fromUtf8(input);
    }
    return text.split(QChar(0)).first(std::min(kMostNames, text.count(QChar(0)) + 1));
}

/// Whether counting up from the name's number would pass the largest one, which stops the process by design.
bool wouldOverflow(const QString &name, qsizetype taken)
{
    const QString text = trimmedName(name);
    qsizetype digits = 0;
    while (digits < text.size() && text[text.size() - 1 - digits] >= u'0' &&
           text[text.size() - 1 - digits] <= u'9')
        ++digits;
    bool isNumber = false;
    const qint64 number = text.last(digits).toLongLong(&isNumber);
    return isNumber && number > std::numeric_limits<qint64>::max() - taken - 2;
}

void checkTexts(const QString &name)
{
    const QString canonical = canonicalName(name);
    require(canonicalName(canonical) == canonical, "the canonical form is final");
    const QString trimmed = trimmedName(name);
    require(trimmedName(trimmed) == trimmed && name.contains(trimmed), "trimming takes off all there is");
}

void checkOrder(const PresetIndex::Entries &entries)
{
    const auto areTied = [](const ListedPreset &a, const ListedPreset &b) {
        return !a.precedes(b) && !b.precedes(a);
    };
    for (const auto &a : entries) {
        require(!a->precedes(*a), "nothing precedes itself");
        for (const auto &b : entries) {
            require(!a->precedes(*b) || !b->precedes(*a), "of two, one comes first");
            require(areTied(*a, *b) == (a->name == b->name), "only one and the same name is tied");
            require(a->canonicalName != b->canonicalName || a->collationKey == b->collationKey,
                    "names that are equal stand together");
            for (const auto &c : entries)
                require(!a->precedes(*b) || !b->precedes(*c) || a->precedes(*c), "the order is transitive");
        }
    }
}

void checkIndex(const PresetIndex &index, const PresetIndex::Entries &entries)
{
    const PresetsList &presets = index.presets();
    require(presets.size() == static_cast<qsizetype>(entries.size()), "every entry is listed");
    for (qsizetype row = 0; row < presets.size(); ++row) {
        const auto entry = index.find(presets[row].get());
        require(entry && index.rowOf(*entry) == row, "an entry knows its row");
        require(row == 0 || !entry->precedes(*index.find(presets[row - 1].get())), "the list is sorted");
        const auto named = index.findNamed(entry->name);
        require(named && named->name == entry->name, "an entry is found by its name");
        require(index.isTaken(entry->name), "a listed name is taken");
        require(index.isTaken(entry->name, presets[row].get()) ==
                    std::any_of(entries.begin(), entries.end(),
                                [&](const auto &other) {
                                    return other != entry && other->canonicalName == entry->canonicalName;
                                }),
                "a name is taken by others exactly when another entry has it");
    }
}

void checkNewNames(const QString &name, const PresetIndex &index)
{
    const auto isTaken = [&](const QString &n) { return index.isTaken(n); };
    const QString unique = uniqueName(name, isTaken);
    require(!isTaken(unique) && unique.startsWith(name), "a unique name is free");
    if (wouldOverflow(name, index.presets().size()))
        return;
    const QString copy = duplicateName(name, isTaken);
    require(!isTaken(copy) && copy.contains(QLatin1StringView("copy")), "a copy's name is free");
}

void renameInIndex(PresetIndex &index, const std::shared_ptr<ListedPreset> &entry, const QString &name)
{
    ListedPreset moved = *entry;
    moved.setName(name);
    const int from = index.rowOf(*entry);
    const int target = index.insertionRow(moved); // counted with the entry in its old place
    index.rename(entry, name, from, target > from ? target - 1 : target);
}

void run(QByteArrayView input)
{
    const QStringList names = namesFrom(input);
    PresetIndex::Entries entries;
    for (const QString &name : names)
        entries.push_back(std::make_shared<ListedPreset>(makePreset(StreamingType::srt, name)));
    for (const QString &name : names)
        checkTexts(name);
    checkOrder(entries);

    PresetIndex index;
    const auto middle = entries.begin() + static_cast<std::ptrdiff_t>(entries.size() / 2);
    PresetIndex::Entries first(entries.begin(), middle);
    PresetIndex::sort(first);
    index.merge(std::move(first));
    for (auto entry = middle; entry != entries.end(); ++entry)
        index.insert(index.insertionRow(**entry), *entry);
    checkIndex(index, entries);
    for (const QString &name : names)
        checkNewNames(name, index);

    for (std::size_t i = 0; i < entries.size(); ++i)
        renameInIndex(index, entries[i], names[static_cast<qsizetype>((i * 7 + 3) % entries.size())]);
    checkIndex(index, entries);
    while (!entries.empty()) {
        index.remove(index.rowOf(*entries.back()));
        entries.pop_back();
        checkIndex(index, entries);
    }
}

} // namespace
} // namespace vantle::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    vantle::fuzz::run({reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)});
    return 0;
}
