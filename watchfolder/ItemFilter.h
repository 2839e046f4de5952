// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QStringList>

#include <string_view>

namespace vantle {

/// Which files count. Without any type and extension all do; else those that match a type or an extension.
/// Thread-safe.
class ItemFilter
{
public:
    /// Types are MIME type names ("text/plain"); a file matches when its type is or inherits one of them.
    /// Extensions are compared in lower case, without a dot.
    ItemFilter(const QStringList &types, const QStringList &extensions);

    [[nodiscard]] const QStringList &types() const { return m_types; }
    [[nodiscard]] const QStringList &extensions() const { return m_extensions; }
    [[nodiscard]] bool isEmpty() const { return m_types.isEmpty() && m_extensions.isEmpty(); }
    [[nodiscard]] bool shouldIgnore(std::string_view path) const;

private:
    [[nodiscard]] bool matchesType(const QString &path) const;
    [[nodiscard]] bool matchesExtension(QStringView name) const;

    QStringList m_types;
    QStringList m_extensions;
};

} // namespace vantle
