// SPDX-License-Identifier: MIT
#include "watchfolder/Inventory.h"

#include "watchfolder/NativePath.h"

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
    const auto collect = [&paths](const Directories::value_type &entry) {
        for (const auto &[name, record] : entry.second)
            paths.push_back(joinPath(entry.first, name));
    };
    if (directory.empty()) {
        for (const auto &entry : m_directories)
            collect(entry);
        return paths;
    }
    if (const auto itself = m_directories.find(directory); itself != m_directories.end())
        collect(*itself);
    const std::string prefix = joinPath(directory, {});
    for (auto it = m_directories.lower_bound(prefix);
         it != m_directories.end() && it->first.starts_with(prefix); ++it)
        collect(*it);
    return paths;
}

void Inventory::forEach(const std::function<void(const std::string &, const Record &)> &visit) const
{
    for (const auto &[directory, names] : m_directories) {
        for (const auto &[name, record] : names)
            visit(joinPath(directory, name), record);
    }
}

Inventory::Names &Inventory::namesForUpdate(std::string_view directory)
{
    const auto found = m_directories.find(directory);
    return found != m_directories.end() ? found->second : m_directories[std::string(directory)];
}

void Inventory::put(std::string_view path, const Record &record)
{
    const auto [directory, name] = splitPath(path);
    namesForUpdate(directory).insert_or_assign(std::string(name), record);
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
