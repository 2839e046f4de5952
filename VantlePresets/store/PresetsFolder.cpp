// SPDX-License-Identifier: MIT
#include "VantlePresets/store/PresetsFolder.h"

#include "VantlePresets/document/FileAccess.h"

#include <QtCore/QDir>

#include <filesystem>

namespace vantle {

using namespace Qt::StringLiterals;

QStringList machineDataDirectories()
{
    return {u"/var/lib"_s};
}

QString presetsFolderPath(const QString &dataDirectory)
{
    return QDir::cleanPath(QDir(dataDirectory).absolutePath()) + "/Orvalle/Streaming Presets"_L1;
}

void ensureFolder(const QString &path)
{
    const std::filesystem::path folder = fileSystemPath(path);
    std::error_code error;
    if (!std::filesystem::exists(folder, error))
        std::filesystem::create_directories(folder, error);
    if (error)
        throw std::system_error(error);
}

} // namespace vantle
