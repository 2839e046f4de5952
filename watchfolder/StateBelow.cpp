// SPDX-License-Identifier: MIT
#include "watchfolder/StateBelow.h"

#include <cerrno>

namespace vantle {

std::optional<FileState> readFileStateBelow(const std::string &folder, std::string_view path,
                                            std::error_code &error)
{
    std::string absolute = folder + '/' + std::string(path);
    for (std::size_t slash = absolute.find('/', folder.size() + 1); slash != std::string::npos;
         slash = absolute.find('/', slash + 1)) {
        absolute[slash] = '\0';
        const auto parent = readFileState(absolute.c_str(), error);
        absolute[slash] = '/';
        if (!parent)
            return std::nullopt;
        if (!parent->isDirectory) {
            error.assign(ENOTDIR, std::system_category());
            return std::nullopt;
        }
    }
    return readFileState(absolute.c_str(), error);
}

} // namespace vantle
