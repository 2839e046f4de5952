// SPDX-License-Identifier: MIT
#include "VantlePresets/encoder/Argument.h"

#include "VantlePresets/model/Secrets.h"

#include <algorithm>

namespace vantle::encoder {

Argument &Argument::plain(const QString &text)
{
    m_parts.append({text, false});
    return *this;
}

Argument &Argument::secret(const QString &text)
{
    m_parts.append({text, true});
    return *this;
}

QString Argument::text(bool reveal) const
{
    QString text;
    for (const Part &part : m_parts)
        text += part.isSecret && !reveal ? masked(part.text) : part.text;
    return text;
}

QStringList Argument::secrets() const
{
    QStringList secrets;
    for (const Part &part : m_parts) {
        if (part.isSecret && !part.text.isEmpty())
            secrets.append(part.text);
    }
    return secrets;
}

void Arguments::add(std::initializer_list<QString> plain)
{
    for (const QString &text : plain)
        m_list.append(Argument().plain(text));
}

void Arguments::add(const QString &option, const Argument &value)
{
    add({option});
    add(value);
}

QStringList Arguments::texts(bool reveal) const
{
    QStringList texts;
    for (const Argument &argument : m_list)
        texts.append(argument.text(reveal));
    return texts;
}

QStringList Arguments::secrets() const
{
    QStringList secrets;
    for (const Argument &argument : m_list)
        secrets.append(argument.secrets());
    std::stable_sort(secrets.begin(), secrets.end(),
                     [](const QString &a, const QString &b) { return a.size() > b.size(); });
    return secrets;
}

} // namespace vantle::encoder
