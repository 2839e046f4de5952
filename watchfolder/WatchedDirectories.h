// SPDX-License-Identifier: MIT
#pragma once

#include "base/NativePath.h"

#include <functional>
#include <map>
#include <unordered_map>

namespace vantle {

/// What a kernel mark is for.
enum class WatchRole {
    Folder, ///< the watched folder
    Below,  ///< a directory in it
    Parent, ///< has the folder's name, or a link on the way: that may be given to something else long before
            ///< the folder itself is gone
    Ancestor, ///< on the way: renaming it moves the folder
};

/// The marks of an event queue: from what the kernel calls a directory (a number, a handle) to its path, and
/// back. Not synchronised.
template <class Key, class Hash, class Equal = std::equal_to<>>
class WatchedDirectories
{
public:
    struct Directory
    {
        std::string path;
        WatchRole role;
    };

    void add(const Key &key, const std::string &path, WatchRole role)
    {
        const auto [node, isNew] = m_byKey.try_emplace(key, Directory{path, role});
        Directory &known = node->second;
        if (!isNew && known.path != path) {
            erasePath(key, known.path);
            known.path = path; // moved: the same directory under its new path
        }
        if (role == WatchRole::Folder || role == WatchRole::Below)
            known.role = role; // a directory of the tree that lies on the way to it, too
        m_byPath.insert_or_assign(path, key);
    }

    template <class Lookup>
    [[nodiscard]] const Directory *find(const Lookup &key) const
    {
        const auto found = m_byKey.find(key);
        return found == m_byKey.end() ? nullptr : &found->second;
    }

    void remove(const Key &key)
    {
        const auto found = m_byKey.find(key);
        if (found == m_byKey.end())
            return;
        erasePath(key, found->second.path);
        m_byKey.erase(found);
    }

    /// Forgets a directory and all below it; released is called with each key.
    void removeTree(const std::string &path, const std::function<void(const Key &)> &released)
    {
        auto it = m_byPath.lower_bound(path);
        while (it != m_byPath.end() && it->first.starts_with(path)) {
            if (!isAtOrBelow(it->first, path)) {
                ++it;
                continue;
            }
            released(it->second);
            m_byKey.erase(it->second);
            it = m_byPath.erase(it);
        }
    }

private:
    void erasePath(const Key &key, const std::string &path)
    {
        const auto found = m_byPath.find(path);
        if (found != m_byPath.end() && found->second == key)
            m_byPath.erase(found);
    }

    std::unordered_map<Key, Directory, Hash, Equal> m_byKey;
    std::map<std::string, Key> m_byPath;
};

} // namespace vantle
