// SPDX-License-Identifier: MIT
#include "watchfolder/Inventory.h"

#include "base/NativePath.h"

namespace vantle {

const Inventory::Record *Inventory::find(std::string_view path) const
{
    const auto [directory, name] = splitPath(path);
    const Names *names = this->names(directory);
    if (names == nullptr)
        return nullptr;
    const auto found = names->find(name);
    return found == names->end() ? nullptr : &found->second;
}

Inventory::Record *Inventory::find(std::string_view path)
{
    return const_cast<Record *>(std::as_const(*this).find(path));
}

const Inventory::Names *Inventory::names(std::string_view directory) const
{
    const auto found = m_directories.find(directory);
    return found == m_directories.end() ? nullptr : &found->second;
}

Inventory::Names *Inventory::names(std::string_view directory)
{
    return const_cast<Names *>(std::as_const(*this).names(directory));
}

std::vector<std::string> Inventory::pathsBelow(std::string_view directory) const
{
    std::vector<std::string> paths;
    forEachBelow(
        directory, [](const Record &) { return true; },
        [&paths](const std::string &path, const Record &) { paths.push_back(path); });
    return paths;
}

void Inventory::forEachBelow(std::string_view directory, const std::function<bool(const Record &)> &isWanted,
                             const Visit &visit) const
{
    const auto visitAll = [&](const Directories::value_type &entry) {
        for (const auto &[name, record] : entry.second) {
            if (isWanted(record))
                visit(joinPath(entry.first, name), record);
        }
    };
    if (directory.empty()) {
        for (const auto &entry : m_directories)
            visitAll(entry);
        return;
    }
    if (const auto itself = m_directories.find(directory); itself != m_directories.end())
        visitAll(*itself);
    const std::string prefix = joinPath(directory, {});
    for (auto it = m_directories.lower_bound(prefix);
         it != m_directories.end() && it->first.starts_with(prefix); ++it)
        visitAll(*it);
}

Inventory::Names &Inventory::namesForUpdate(std::string_view directory)
{
    const auto found = m_directories.find(directory);
    return found != m_directories.end() ? found->second : m_directories[std::string(directory)];
}

void Inventory::put(std::string_view path, const Record &record)
{
    const auto [directory, name] = splitPath(path);
    Names &names = namesForUpdate(directory);
    makeRoom(names);
    names.insert_or_assign(std::string(name), record);
}

void Inventory::remove(std::string_view path)
{
    const auto [directory, name] = splitPath(path);
    const auto names = m_directories.find(directory);
    if (names == m_directories.end())
        return;
    if (const auto found = names->second.find(name); found != names->second.end())
        names->second.erase(found);
    if (names->second.empty())
        m_directories.erase(names);
}

} // namespace vantle
