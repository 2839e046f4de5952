// SPDX-License-Identifier: MIT
#include "apps/vantlectl/serve/JsonText.h"

#include "VantlePresets/document/DocumentWriter.h"

namespace vantle::ctl {

ObjectText &ObjectText::text(const char *key, const QString &value)
{
    return raw(key, jsonText(value));
}

ObjectText &ObjectText::texts(const char *key, const QStringList &values)
{
    QByteArrayList elements;
    for (const QString &value : values)
        elements.append(jsonText(value));
    return raw(key, jsonArray(elements));
}

ObjectText &ObjectText::raw(const char *key, QByteArrayView json)
{
    if (!m_members.isEmpty())
        m_members += ',';
    m_members += '"';
    m_members += key;
    m_members += "\":";
    m_members += json;
    return *this;
}

ObjectText &ObjectText::members(const ObjectText &other)
{
    if (!m_members.isEmpty() && !other.m_members.isEmpty())
        m_members += ',';
    m_members += other.m_members;
    return *this;
}

QByteArray jsonText(const QString &text)
{
    const QByteArray array =
        document::encode(document::Format::compact, [&](document::DocumentWriter &writer) {
            writer.beginArray();
            writer.string(QStringView(text));
            writer.endArray();
        });
    return array.sliced(1, array.size() - 2);
}

QByteArray jsonArray(const QByteArrayList &elements)
{
    return '[' + elements.join(',') + ']';
}

} // namespace vantle::ctl
