// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace vantle::ctl {

/// The text of a JSON object, put together from members and from texts that are JSON already: documents keep
/// their order and their numbers.
class ObjectText
{
public:
    ObjectText &text(const char *key, const QString &value);
    ObjectText &texts(const char *key, const QStringList &values);
    ObjectText &number(const char *key, qint64 value) { return raw(key, QByteArray::number(value)); }
    ObjectText &flag(const char *key, bool value) { return raw(key, value ? "true" : "false"); }
    /// The value is one JSON text.
    ObjectText &raw(const char *key, QByteArrayView json);
    /// Those of another object, behind the own ones.
    ObjectText &members(const ObjectText &other);

    [[nodiscard]] QByteArray json() const { return '{' + m_members + '}'; }

private:
    QByteArray m_members;
};

/// The text as a JSON string.
[[nodiscard]] QByteArray jsonText(const QString &text);
/// A JSON array of texts that are JSON.
[[nodiscard]] QByteArray jsonArray(const QByteArrayList &elements);

} // namespace vantle::ctl
