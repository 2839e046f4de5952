// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/Export.h"

#include <QtCore/QString>
#include <QtCore/QUrl>

#include <string>
#include <string_view>

// Inside the watcher a path is what the kernel says: bytes, which need not be UTF-8. Not installed: what is
// exported here is for the presets library and vrxwatch alone.
namespace vantle {

/// The bytes of a path; empty when the text can't be encoded.
std::string nativePath(const QString &path);

VANTLE_WATCHFOLDER_EXPORT QString displayPath(std::string_view path);

/// The file URL of a path. Bytes that are not UTF-8 stay percent-encoded, so that no two paths share a URL.
QUrl urlForNativePath(std::string_view path);

/// The path of a file URL, byte for byte.
VANTLE_WATCHFOLDER_EXPORT std::string nativePathOfUrl(const QUrl &url);

struct SplitPath
{
    std::string_view directory;
    std::string_view name;
};

/// Splits at the last slash; a path without one has the empty directory.
VANTLE_WATCHFOLDER_EXPORT SplitPath splitPath(std::string_view path);

std::string joinPath(std::string_view directory, std::string_view name);

/// True when path is directory or lies below it; everything lies below the empty directory.
bool isAtOrBelow(std::string_view path, std::string_view directory);

/// True when any component begins with a dot.
bool hasHiddenComponent(std::string_view path);

} // namespace vantle
