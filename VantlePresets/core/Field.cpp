// SPDX-License-Identifier: MIT
#include "VantlePresets/core/FieldFacts.h"

namespace vantle {

QLatin1StringView Field::key() const
{
    return m_facts->key;
}
QLatin1StringView Field::label() const
{
    return m_facts->label;
}
QLatin1StringView Field::meaning() const
{
    return m_facts->meaning;
}
Field::Type Field::type() const
{
    return m_facts->type;
}
QStringList Field::choices() const
{
    return m_facts->choices ? m_facts->choices() : QStringList();
}
std::optional<qint64> Field::minimum() const
{
    return m_facts->minimum;
}
std::optional<qint64> Field::maximum() const
{
    return m_facts->maximum;
}
QLatin1StringView Field::unit() const
{
    return m_facts->unit;
}
bool Field::isSecret() const
{
    return m_facts->isSecret;
}
bool Field::isAddress() const
{
    return m_facts->isAddress;
}
bool Field::isAssignable() const
{
    return m_facts->isAssignable;
}
bool Field::isKept(StreamingType type) const
{
    return m_facts->kinds.contains(type);
}
QLatin1StringView Field::keptWhile() const
{
    return m_facts->keptWhile;
}
bool Field::isRead() const
{
    return m_facts->isRead;
}
std::optional<qint64> Field::valueWhenAbsent() const
{
    return m_facts->valueWhenAbsent;
}

} // namespace vantle
