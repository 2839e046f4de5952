// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QString>

#include <optional>
#include <string>

namespace vantle {

/// The data directory that was chosen for a program: by its option, else by VANTLE_DATA_DIR. Nothing for
/// the machine-wide one.
inline std::optional<QString> chosenDataDirectory(const std::string &option)
{
    const QString chosen =
        option.empty() ? qEnvironmentVariable("VANTLE_DATA_DIR") : QString::fromStdString(option);
    return chosen.isEmpty() ? std::nullopt : std::optional(chosen);
}

/// What is wrong with the option's value; "" when nothing is. A variable of a script that is not set must not
/// mean the machine's own presets.
inline std::string dataDirectoryFault(const std::string &option)
{
    return option.empty() ? "the name of the folder is empty" : "";
}

} // namespace vantle
