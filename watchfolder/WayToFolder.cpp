// SPDX-License-Identifier: MIT
#include "watchfolder/WayToFolder.h"

#include "base/NativePath.h"

#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace vantle {

namespace {

constexpr int kMostLinks = 40; // as the kernel has it

std::string linkTarget(const std::string &path)
{
    char target[PATH_MAX];
    const ssize_t size = readlink(path.c_str(), target, sizeof target);
    return {target, size > 0 ? static_cast<std::size_t>(size) : 0};
}

/// Blanks, line breaks and backslashes are octal in the kernel's tables.
std::string unescaped(const std::string &text)
{
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size()) {
            plain += static_cast<char>(std::stoi(text.substr(i + 1, 3), nullptr, 8));
            i += 3;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

} // namespace

std::map<std::string, WatchRole> directoriesOnTheWay(const std::string &path)
{
    std::map<std::string, WatchRole> directories;
    std::string at; // without links and without a slash at its end: "" for the root
    std::string rest = path;
    for (int links = 0; !rest.empty();) {
        const std::size_t begin = std::min(rest.find_first_not_of('/'), rest.size());
        const std::size_t end = std::min(rest.find('/', begin), rest.size());
        const std::string name = rest.substr(begin, end - begin);
        rest.erase(0, end);
        if (name.empty() || name == ".")
            continue;
        if (name == "..") {
            at.resize(at.empty() ? 0 : at.rfind('/'));
            continue;
        }
        const std::string entry = at + '/' + name;
        const std::string target = linkTarget(entry);
        const bool isLast = rest.find_first_not_of('/') == std::string::npos;
        WatchRole &role = directories.try_emplace(at.empty() ? "/" : at, WatchRole::Ancestor).first->second;
        if (!target.empty() || isLast)
            role = WatchRole::Parent;
        if (target.empty()) {
            at = entry;
            continue;
        }
        if (++links > kMostLinks)
            break;
        if (target.starts_with('/'))
            at.clear();
        rest.insert(0, target);
    }
    return directories;
}

std::map<std::string, long> mountsBelow(const std::string &directory)
{
    std::map<std::string, long> mounts;
    char resolved[PATH_MAX];
    if (realpath(directory.c_str(), resolved) == nullptr)
        return mounts;
    const std::string prefix = std::string(resolved) + (resolved[1] == '\0' ? "" : "/");
    std::ifstream table("/proc/self/mountinfo");
    for (std::string line; std::getline(table, line);) {
        std::istringstream words(line);
        long number = 0;
        std::string parent, device, root, point;
        if (!(words >> number >> parent >> device >> root >> point))
            continue;
        point = unescaped(point);
        if (point.size() > prefix.size() && point.starts_with(prefix))
            mounts[point.substr(prefix.size())] = number; // the last of those that cover each other
    }
    return mounts;
}

} // namespace vantle
