// SPDX-License-Identifier: MIT
#include "base/NativePath.h"

#include <QtCore/QFile>
#include <QtCore/QUtf8StringView>

namespace vantle {

std::string nativePath(const QString &path)
{
    return path.isValidUtf16() ? QFile::encodeName(path).toStdString() : std::string();
}

QString displayPath(std::string_view path)
{
    return QString::fromUtf8(path.data(), static_cast<qsizetype>(path.size()));
}

QUrl urlForNativePath(std::string_view path)
{
    const QUtf8StringView text(path.data(), static_cast<qsizetype>(path.size()));
    if (text.isValidUtf8())
        return QUrl::fromLocalFile(text.toString());
    const QByteArray bytes(path.data(), static_cast<qsizetype>(path.size()));
    return QUrl::fromEncoded(QByteArrayLiteral("file://") + bytes.toPercentEncoding("/"), QUrl::StrictMode);
}

std::string nativePathOfUrl(const QUrl &url)
{
    return QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()).toStdString();
}

SplitPath splitPath(std::string_view path)
{
    const size_t slash = path.rfind('/');
    if (slash == std::string_view::npos)
        return {{}, path};
    return {path.substr(0, slash), path.substr(slash + 1)};
}

std::string joinPath(std::string_view directory, std::string_view name)
{
    if (directory.empty())
        return std::string(name);
    std::string path;
    path.reserve(directory.size() + 1 + name.size());
    path.append(directory).append(1, '/').append(name);
    return path;
}

bool isAtOrBelow(std::string_view path, std::string_view directory)
{
    return directory.empty() || (path.starts_with(directory) &&
                                 (path.size() == directory.size() || path[directory.size()] == '/'));
}

bool hasHiddenComponent(std::string_view path)
{
    return path.starts_with('.') || path.find("/.") != std::string_view::npos;
}

} // namespace vantle
