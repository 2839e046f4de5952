// SPDX-License-Identifier: MIT
#include "apps/vantlectl/InputFile.h"

#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/model/PresetFactory.h"

#include <algorithm>

#include <unistd.h>

namespace vantle::ctl {

namespace fs = std::filesystem;

QByteArray readDocumentArgument(const std::filesystem::path &argument)
{
    if (argument != kStandardStream)
        return readFile(argument);
    static const QByteArray input = readFully(STDIN_FILENO); // it can be read once only
    return input;
}

std::shared_ptr<VantlePreset> readPresetArgument(const std::filesystem::path &argument)
{
    return argument == kStandardStream ? decodePreset(readDocumentArgument(argument))
                                       : readPresetFile(argument);
}

std::vector<fs::path> filesOfArgument(const fs::path &argument)
{
    std::error_code ignored; // what can't be looked at is listed, so that reading it tells why
    if (argument == kStandardStream || !fs::is_directory(argument, ignored))
        return {argument};
    std::vector<fs::path> files;
    for (const fs::directory_entry &entry : fs::directory_iterator(argument)) {
        const std::string name = entry.path().filename().native();
        if (name.front() != '.' && entry.path().extension() == ".json" && !entry.is_directory(ignored))
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace vantle::ctl
