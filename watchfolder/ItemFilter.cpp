// SPDX-License-Identifier: MIT
#include "watchfolder/ItemFilter.h"

#include "base/NativePath.h"

#include <QtCore/QMimeDatabase>

#include <algorithm>

namespace vantle {

ItemFilter::ItemFilter(const QStringList &types, const QStringList &extensions) : m_types(types)
{
    for (const QString &extension : extensions)
        m_extensions.append(extension.toLower());
}

bool ItemFilter::shouldIgnore(std::string_view path) const
{
    if (isEmpty())
        return false;
    if (!m_extensions.isEmpty() && matchesExtension(displayPath(splitPath(path).name)))
        return false;
    return m_types.isEmpty() || !matchesType(displayPath(path));
}

bool ItemFilter::matchesType(const QString &path) const
{
    const QMimeType type = QMimeDatabase().mimeTypeForFile(path);
    return type.isValid() && std::any_of(m_types.begin(), m_types.end(),
                                         [&type](const QString &wanted) { return type.inherits(wanted); });
}

bool ItemFilter::matchesExtension(QStringView name) const
{
    const qsizetype dot = name.lastIndexOf(u'.');
    // A leading dot hides a file, it does not begin an extension.
    return dot > 0 && m_extensions.contains(name.sliced(dot + 1).toString().toLower());
}

} // namespace vantle
