// SPDX-License-Identifier: MIT
#include "VantlePresets/document/DocumentError.h"

namespace vantle {
namespace {

QString join(const QString &place, const QString &description)
{
    return place.isEmpty() ? description : place + QLatin1StringView(": ") + description;
}

} // namespace

DecodingError::DecodingError(const QString &place, const QString &description)
    : std::runtime_error(join(place, description).toStdString()), m_place(place), m_description(description)
{
}

QString DecodingError::message() const
{
    return join(m_place, m_description);
}

} // namespace vantle
