// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/FileState.h"
#include "watchfolder/LookTable.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vantle {

/// What is known about the items of a folder, by path relative to it. Not synchronised: the owner holds a
/// lock. One hash table of names per directory, and the directories sorted, so that a subtree is a range.
class Inventory
{
public:
    struct Record
    {
        FileState state;
        /// The walk that met the item last; a walk reports what it did not meet.
        std::uint32_t walk = 0;
        bool hasState = true; // false when it was found but could not be looked at
        Knowledge knowledge = Knowledge::told;
    };

    struct NameHash
    {
        using is_transparent = void;
        size_t operator()(std::string_view name) const { return std::hash<std::string_view>()(name); }
    };
    using Names = std::unordered_map<std::string, Record, NameHash, std::equal_to<>>;

    [[nodiscard]] const Record *find(std::string_view path) const;
    Record *find(std::string_view path);
    [[nodiscard]] bool empty() const { return m_directories.empty(); }
    /// The names in a directory, or none.
    [[nodiscard]] const Names *names(std::string_view directory) const;
    Names *names(std::string_view directory);
    /// Every inventoried path that lies below a directory (without the directory itself).
    [[nodiscard]] std::vector<std::string> pathsBelow(std::string_view directory) const;
    using Visit = std::function<void(const std::string &path, const Record &record)>;
    void forEach(const Visit &visit) const
    {
        forEachBelow(
            {}, [](const Record &) { return true; }, visit);
    }
    /// As pathsBelow(), for those that are wanted.
    void forEachBelow(std::string_view directory, const std::function<bool(const Record &record)> &isWanted,
                      const Visit &visit) const;

    Names &namesForUpdate(std::string_view directory);
    /// Call it before an insertion: growing fourfold and not twofold halves what filling a large table costs.
    static void makeRoom(Names &names)
    {
        if (names.size() >= names.bucket_count())
            names.reserve(4 * names.size());
    }
    void put(std::string_view path, const Record &record);
    void remove(std::string_view path);
    void clear() { m_directories.clear(); }

private:
    using Directories = std::map<std::string, Names, std::less<>>;
    Directories m_directories;
};

} // namespace vantle
